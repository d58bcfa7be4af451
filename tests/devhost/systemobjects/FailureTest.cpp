#include "machine/plannedfailure.h"
#include "systemfixture.h"

TEST_F(TaskTest, letsCallsFailAsPlanned)
{
    LONG count = 0;
    ASSERT_EQ(add(L"T"), S_OK);
    ComPtr<IRegisteredTask> task;
    ComPtr<IUnknown> object;
    TASK_STATE state{};
    const std::pair<const char*, std::function<HRESULT()>> rows[] = {
        {"ITaskService::Connect", [&] { return service->Connect({}, {}, {}, {}); }},
        {"ITaskService::NewTask", [&] { return service->NewTask(0, definition.put()); }},
        {"ITaskFolder::GetTask", [&] { return root->GetTask(Bstr(L"T").get(), task.put()); }},
        {"IRegisteredTask::get_State", [&] { return registered->get_State(&state); }},
        {"ITaskDefinition::get_Settings", [&] { return definition->get_Settings(settings.put()); }},
        {"ITaskDefinition::put_Data", [&] { return definition->put_Data(nullptr); }},
        {"ITaskSettings::put_Priority", [&] { return settings->put_Priority(1); }},
        {"ITaskSettings::put_Hidden", [&] { return settings->put_Hidden(VARIANT_TRUE); }},
        {"ITriggerCollection::get_Count", [&] { return triggers->get_Count(&count); }},
        {"ITrigger::put_Id", [&] { return weekly->put_Id(nullptr); }},
        {"IWeeklyTrigger::put_DaysOfWeek", [&] { return weekly->put_DaysOfWeek(1); }},
        {"IActionCollection::get_Count", [&] { return actions->get_Count(&count); }},
        {"IExecAction::put_Path", [&] { return action->put_Path(Bstr(L"x").get()); }},
        {"IExecAction::QueryInterface",
            [&] { return action->QueryInterface(__uuidof(IExecAction), reinterpret_cast<void**>(object.put())); }},
        {"TaskScheduler::CreateInstance", [&] { return create(__uuidof(TaskScheduler), service); }},
    };
    for (const auto& [call, perform] : rows) {
        SCOPED_TRACE(call);
        EXPECT_TRUE(devhost::machine::isCall(call));
        plan(call, E_ABORT, 2);
        EXPECT_EQ(perform(), E_ABORT);
        EXPECT_EQ(perform(), E_ABORT);
        EXPECT_EQ(perform(), S_OK);
    }
    EXPECT_TRUE(devhost::machine::readState().plannedFailures.empty());
}

TEST_F(TaskTest, doNothingInAPlannedCall)
{
    plan("ITaskFolder::RegisterTaskDefinition", E_ACCESSDENIED);
    EXPECT_EQ(add(L"T"), E_ACCESSDENIED);
    plan("ITaskFolder::RegisterTaskDefinition", S_OK);
    EXPECT_EQ(add(L"T"), S_OK);
    EXPECT_FALSE(registered);
    EXPECT_TRUE(devhost::machine::readState().tasks.empty());
}

TEST_F(TaskTest, failWhenTheMachinesFileCannotBeRead)
{
    support::writeFile(folder.path() / "machine.json", "{\"tasks\": 1}");
    EXPECT_EQ(add(L"T"), E_FAIL);
    EXPECT_EQ(support::readFile(folder.path() / "machine.json"), "{\"tasks\": 1}");
}
