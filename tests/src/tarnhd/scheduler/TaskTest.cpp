#include "tarnhd/scheduler/task.h"

#include "common/utils/localtime.h"
#include "machine/taskrun.h"
#include "support/logcapture.h"
#include "support/machine.h"
#include "tarnhd/scheduler/prioritylevel.h"
#include "tarnhd/scheduler/scheduler.h"
#include "tarnhd/scheduler/trigger.h"

namespace vx::scheduler {
namespace {

using nlohmann::json;
using support::Machine;

const Ticks start = *tarn::common::utils::fromLocalTime({2024, 2, 3, 4, 5, 6, 0}) * ticksPerSecond + 9'999'999;
const Ticks end = *tarn::common::utils::fromLocalTime({2039, 12, 31, 23, 59, 59, 0}) * ticksPerSecond;

template <typename Kind>
std::shared_ptr<Kind> makeTrigger(Ticks endBoundary)
{
    auto trigger = std::make_shared<Kind>(start, end);
    trigger->setEndBoundary(endBoundary);
    return trigger;
}

bool setTwoTriggers(Task& task)
{
    const auto daily = makeTrigger<DailyTrigger>(end);
    const auto weekly = makeTrigger<WeeklyTrigger>(end);
    daily->setDaysInterval(3);
    weekly->setWeeksInterval(4);
    weekly->setDaysOfWeek({2, 8});
    return task.setTriggers({daily, weekly});
}

/// Writes and reads back; gives the number of operations that failed.
int failuresOfAll(Task& task)
{
    const bool successes[] = {task.setDescription(L"text"), task.getDescription() == L"text",
        task.setActionPath(L"a b"), task.getActionPath() == L"a b", task.setActionArguments(L"--x"),
        task.getActionArguments() == L"--x", task.setSignature(L"L\u00e9o"), task.hasSignature(L"L\u00e9o"),
        task.setPriority(4), task.getPriority() == 4, task.setEnabled(true), task.isEnabled(), task.setHidden(true),
        task.isHidden(), task.setStartWhenAvailable(true), task.isStartWhenAvailable(), task.setUserId(L""),
        task.setUserId(L"somebody"), task.getUserId() == L"somebody", setTwoTriggers(task)};
    return static_cast<int>(std::ranges::count(successes, false));
}

int failuresOfSave(Task& task)
{
    return task.save(L"", L"") ? 0 : 1;
}

class TaskTest : public testing::Test {
protected:
    static std::shared_ptr<Task> makeTask()
    {
        const auto scheduler = createScheduler();
        EXPECT_TRUE(scheduler->Initialize());
        return scheduler->createTask(L"task");
    }

    const Machine machine;
    const support::LogCapture log;
    const std::shared_ptr<Task> task = makeTask();
};

TEST_F(TaskTest, registersWhatItWasGiven)
{
    EXPECT_EQ(failuresOfAll(*task), 0) << log.text();
    EXPECT_TRUE(Machine::state().tasks.empty());
    EXPECT_TRUE(task->save(L"", L""));
    const auto registered = Machine::state().tasks.at(0);
    EXPECT_EQ(registered.path, "\\Vantorix\\Tarnpatch\\task");
    EXPECT_EQ(registered.user, "");
    EXPECT_EQ(registered.logonType, 5);
    EXPECT_EQ(registered.registrationFlags, 0x26);
    EXPECT_EQ(registered.securityDescriptor, "D:(A;;FA;;;BA)(A;;FA;;;SY)");
    auto definition = registered.definition;
    auto& settings = definition["Settings"];
    for (const char* usual : {"AllowDemandStart", "AllowHardTerminate", "Compatibility", "DisallowStartIfOnBatteries",
             "StopIfGoingOnBatteries"})
        settings.erase(usual);
    EXPECT_EQ(definition, json::parse(R"({"Actions": [{"Arguments": "--x", "Path": "a b", "Type": 0}],
        "Data": "L\u00e9o",
        "Principal": {"GroupId": "NT AUTHORITY\\SYSTEM", "LogonType": 5, "UserId": "somebody"},
        "RegistrationInfo": {"Author": "Tarnpatch Agent", "Description": "text"},
        "Settings": {"Enabled": true, "ExecutionTimeLimit": "P3D", "Hidden": true, "MultipleInstances": 2,
            "Priority": 10, "StartWhenAvailable": true},
        "Triggers": [{"DaysInterval": 3, "Enabled": true, "EndBoundary": "2039-12-31T23:59:59", "Id": "trigger0",
            "StartBoundary": "2024-02-03T04:05:06", "Type": 2},
            {"DaysOfWeek": 10, "Enabled": true, "EndBoundary": "2039-12-31T23:59:59", "Id": "trigger1",
            "StartBoundary": "2024-02-03T04:05:06", "Type": 3, "WeeksInterval": 4}]})"));
}

TEST_F(TaskTest, overwritesItselfForAnAccount)
{
    task->setActionPath(L"a");
    EXPECT_TRUE(task->save(L"", L""));
    EXPECT_EQ(log.count("Task already exists. Update it."), 0u) << log.text();
    task->setEnabled(false);
    EXPECT_TRUE(task->save(L"somebody", L"secret")) << log.text();
    EXPECT_EQ(log.count("Task already exists. Update it."), 1u) << log.text();
    EXPECT_EQ(log.count("Task successfully saved."), 2u) << log.text();
    EXPECT_EQ(Machine::definition()["Principal"]["LogonType"], 1);
    EXPECT_EQ(Machine::definition()["Settings"]["Enabled"], false);
    EXPECT_EQ(Machine::state().tasks.at(0).user, "somebody");
    EXPECT_EQ(Machine::state().tasks.at(0).logonType, 1);
}

TEST_F(TaskTest, saysWhichCallFailedAndBeginsAnew)
{
    EXPECT_EQ(failuresOfAll(*task), 0) << log.text();
    struct Row {
        const char *call, *what;
        std::vector<long> before = {}; ///< the failing one
    };
    // What the others leave behind may be refused by a save, so its own come first.
    const std::vector<Row> ofSave{{"ITaskDefinition::get_RegistrationInfo", "get registration info"},
        {"IRegistrationInfo::put_Author", "put author"}, {"ITaskDefinition::get_Principal", "get principal"},
        {"IPrincipal::put_LogonType", "set logon type"}, {"IPrincipal::put_LogonType", "put logon type", {S_OK}},
        {"ITaskDefinition::get_Settings", "get task settings"},
        {"ITaskSettings::put_MultipleInstances", "set multiple instances"},
        {"ITaskSettings::put_ExecutionTimeLimit", "set execution time limit"},
        {"ITaskFolder::RegisterTaskDefinition", "register task definition"}};
    const std::vector<Row> ofAll{{"ITaskDefinition::get_RegistrationInfo", "get task registration info"},
        {"IRegistrationInfo::put_Description", "put task description"},
        {"IRegistrationInfo::get_Description", "get task description"},
        {"ITaskDefinition::get_Actions", "get action for the task"},
        {"IActionCollection::get_Count", "get actions count"}, {"IActionCollection::get_Item", "get action item: 1"},
        {"IExecAction::QueryInterface", "query action interface", {E_NOINTERFACE}},
        {"IExecAction::put_Path", "set action path"}, {"IExecAction::get_Path", "get action path"},
        {"IExecAction::put_Arguments", "set action parameters"},
        {"IExecAction::get_Arguments", "get action parameters"}, {"ITaskDefinition::put_Data", "set task signature"},
        {"ITaskDefinition::get_Data", "get task definition"}, {"ITaskDefinition::get_Settings", "get task settings"},
        {"ITaskSettings::put_Priority", "set task priority"}, {"ITaskSettings::get_Priority", "get task priority"},
        {"ITaskSettings::put_Enabled", "set enabled state of task"},
        {"ITaskSettings::get_Enabled", "get enabled state of task"},
        {"ITaskSettings::put_Hidden", "set hidden state of task"},
        {"ITaskSettings::get_Hidden", "get hidden state of task"}, {"ITaskDefinition::get_Principal", "get principal"},
        {"ITaskSettings::put_StartWhenAvailable", "set \"start when available\" state of task"},
        {"ITaskSettings::get_StartWhenAvailable", "get \"start when available\" state of task"},
        {"IPrincipal::put_GroupId", "set group id"}, {"IPrincipal::put_UserId", "set user id"},
        {"IPrincipal::put_LogonType", "put logon type"}, {"IPrincipal::get_UserId", "get user ID"},
        {"ITaskDefinition::get_Triggers", "get a task triggers collection"},
        {"ITriggerCollection::get_Count", "get a task triggers collection count"},
        {"ITriggerCollection::Remove", "remove trigger with index 1", {S_OK}},
        {"ITriggerCollection::Create", "create trigger"}, {"IDailyTrigger::QueryInterface", "query trigger interface"},
        {"ITrigger::put_Id", "put trigger ID"}, {"ITrigger::put_StartBoundary", "put start boundary"},
        {"ITrigger::put_EndBoundary", "put end boundary"}, {"IDailyTrigger::put_DaysInterval", "put days interval"},
        {"IWeeklyTrigger::put_WeeksInterval", "put days interval"},
        {"IWeeklyTrigger::put_DaysOfWeek", "put days of week"}};
    long code = E_FAIL;
    const auto expectFailures = [&](const std::vector<Row>& rows, int (*use)(Task&)) {
        for (const auto& row : rows) {
            SCOPED_TRACE(row.call);
            Machine::plan(row.call, row.before);
            Machine::plan(row.call, {++code});
            EXPECT_EQ(use(*task), 1);
            const auto failure = std::string("Failed to ") + row.what + ". HRESULT";
            const auto number = std::to_string(code);
            EXPECT_TRUE(log.has(2, failure + " = " + number) || log.has(2, failure + ": " + number)) << log.text();
            EXPECT_TRUE(Machine::state().tasks.empty());
        }
    };
    expectFailures(ofSave, failuresOfSave);
    expectFailures(ofAll, failuresOfAll);
    EXPECT_TRUE(log.has(2, "Failed to create trigger or to add trigger to a collection.")) << log.text();
    EXPECT_EQ(failuresOfAll(*task), 0) << log.text();
}

TEST_F(TaskTest, takesTheFirstActionThatStartsAProgramAndMakesOneToWriteOnly)
{
    EXPECT_EQ(task->getActionPath(), L"");
    Machine::plan("IActionCollection::Create", {E_FAIL});
    EXPECT_FALSE(task->setActionPath(L"first"));
    EXPECT_TRUE(log.has(2, "Failed to create an action. HRESULT = -2147467259")) << log.text();
    for (const wchar_t* path : {L"first", L"second"}) {
        EXPECT_TRUE(task->setActionPath(path));
        Machine::plan("IExecAction::QueryInterface", {E_NOINTERFACE}); // of the first
    }
    EXPECT_EQ(task->getActionPath(), L"second");
    EXPECT_EQ(task->getActionPath(), L"first");
}

TEST_F(TaskTest, knowsItsSignatureExactly)
{
    EXPECT_FALSE(task->hasSignature(L""));
    EXPECT_TRUE(log.has(2, "Failed to get task definition. HRESULT = 0")) << log.text();
    EXPECT_TRUE(task->setSignature(L"text"));
    EXPECT_FALSE(task->hasSignature(L"Text"));
    EXPECT_FALSE(task->hasSignature(L"text "));
}

TEST_F(TaskTest, mapsLevelsToPrioritiesAndBack)
{
    std::vector<int> levels, priorities;
    for (int priority = -1; priority <= 11; ++priority)
        levels.push_back(levelOf(priority));
    EXPECT_EQ(levels, (std::vector<int>{0, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 4, 0}));
    for (int level = 0; level <= 5; ++level)
        priorities.push_back(priorityOf(level));
    EXPECT_EQ(priorities, (std::vector<int>{-1, 0, 1, 4, 10, -1}));
    EXPECT_FALSE(task->setPriority(5)) << "refused";
}

TEST_F(TaskTest, replacesTriggersAndLeavesOutEndsAndIntervalsThatAreNone)
{
    EXPECT_TRUE(setTwoTriggers(*task));
    EXPECT_FALSE(task->setTriggers({nullptr}));
    EXPECT_TRUE(log.has(2, "Failed to create an empty trigger.")) << log.text();
    const auto weekly = makeTrigger<WeeklyTrigger>(noEnd);
    weekly->setDaysOfWeek({1});
    EXPECT_TRUE(setTwoTriggers(*task));
    EXPECT_TRUE(task->setTriggers({makeTrigger<DailyTrigger>(noEnd), weekly}));
    EXPECT_TRUE(log.has(4, "2 triggers to be set")) << log.text();
    task->setActionPath(L"a");
    EXPECT_TRUE(task->save(L"", L"")) << log.text();
    EXPECT_EQ(Machine::definition()["Triggers"], json::parse(R"([
        {"DaysInterval": 1, "Enabled": true, "Id": "trigger0", "StartBoundary": "2024-02-03T04:05:06", "Type": 2},
        {"DaysOfWeek": 1, "Enabled": true, "Id": "trigger1", "StartBoundary": "2024-02-03T04:05:06", "Type": 3,
            "WeeksInterval": 1}])"));
    EXPECT_TRUE(task->setTriggers({}));
    EXPECT_TRUE(task->save(L"", L""));
    EXPECT_EQ(Machine::definition()["Triggers"], json::array());
}

TEST_F(TaskTest, tellsTheStateOfTheRegisteredTaskOrElseOfTheDefinition)
{
    Machine::plan("ITaskSettings::get_Enabled", {E_FAIL});
    EXPECT_EQ(task->getState(), TaskState::Unknown);
    task->setEnabled(false);
    EXPECT_EQ(task->getState(), TaskState::Disabled);
    task->setActionPath(L"a");
    EXPECT_TRUE(task->save(L"", L""));
    task->setEnabled(true);
    EXPECT_EQ(task->getState(), TaskState::Disabled);
    Machine::plan("IRegisteredTask::get_State", {E_FAIL, S_OK}); // that gives an unknown state
    EXPECT_EQ(task->getState(), TaskState::Enabled);
    EXPECT_EQ(task->getState(), TaskState::Enabled);
    Machine::change([](auto& state) {
        state.tasks.at(0).lastRun = devhost::machine::runOf(GetCurrentProcess(), GetCurrentProcessId());
    });
    EXPECT_EQ(task->getState(), TaskState::Running);
}

} // namespace
} // namespace vx::scheduler
