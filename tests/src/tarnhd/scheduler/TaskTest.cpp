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
    // Those of a save come first: what the others leave behind may be refused.
    const struct {
        int (*use)(Task& task);
        const char *call, *message;
        std::vector<long> before = {}; ///< the failing one
    } rows[] = {
        {failuresOfSave, "ITaskDefinition::get_RegistrationInfo", "Failed to get registration info. HRESULT = "},
        {failuresOfSave, "IRegistrationInfo::put_Author", "Failed to put author. HRESULT = "},
        {failuresOfSave, "ITaskDefinition::get_Principal", "Failed to get principal. HRESULT = "},
        {failuresOfSave, "IPrincipal::put_LogonType", "Failed to set logon type. HRESULT = "},
        {failuresOfSave, "IPrincipal::put_LogonType", "Failed to put logon type. HRESULT = ", {S_OK}},
        {failuresOfSave, "ITaskDefinition::get_Settings", "Failed to get task settings. HRESULT = "},
        {failuresOfSave, "ITaskSettings::put_MultipleInstances", "Failed to set multiple instances. HRESULT = "},
        {failuresOfSave, "ITaskSettings::put_ExecutionTimeLimit", "Failed to set execution time limit. HRESULT = "},
        {failuresOfSave, "ITaskFolder::RegisterTaskDefinition", "Failed to register task definition. HRESULT = "},
        {failuresOfAll, "ITaskDefinition::get_RegistrationInfo", "Failed to get task registration info. HRESULT = "},
        {failuresOfAll, "IRegistrationInfo::put_Description", "Failed to put task description. HRESULT = "},
        {failuresOfAll, "IRegistrationInfo::get_Description", "Failed to get task description. HRESULT = "},
        {failuresOfAll, "ITaskDefinition::get_Actions", "Failed to get action for the task. HRESULT = "},
        {failuresOfAll, "IActionCollection::get_Count", "Failed to get actions count. HRESULT = "},
        {failuresOfAll, "IActionCollection::get_Item", "Failed to get action item: 1. HRESULT = "},
        {failuresOfAll, "IExecAction::QueryInterface", "Failed to query action interface. HRESULT = ", {E_NOINTERFACE}},
        {failuresOfAll, "IExecAction::put_Path", "Failed to set action path. HRESULT = "},
        {failuresOfAll, "IExecAction::get_Path", "Failed to get action path. HRESULT = "},
        {failuresOfAll, "IExecAction::put_Arguments", "Failed to set action parameters. HRESULT = "},
        {failuresOfAll, "IExecAction::get_Arguments", "Failed to get action parameters. HRESULT = "},
        {failuresOfAll, "ITaskDefinition::put_Data", "Failed to set task signature. HRESULT = "},
        {failuresOfAll, "ITaskDefinition::get_Data", "Failed to get task definition. HRESULT = "},
        {failuresOfAll, "ITaskDefinition::get_Settings", "Failed to get task settings. HRESULT = "},
        {failuresOfAll, "ITaskSettings::put_Priority", "Failed to set task priority. HRESULT = "},
        {failuresOfAll, "ITaskSettings::get_Priority", "Failed to get task priority. HRESULT = "},
        {failuresOfAll, "ITaskSettings::put_Enabled", "Failed to set enabled state of task. HRESULT = "},
        {failuresOfAll, "ITaskSettings::get_Enabled", "Failed to get enabled state of task. HRESULT = "},
        {failuresOfAll, "ITaskSettings::put_Hidden", "Failed to set hidden state of task. HRESULT = "},
        {failuresOfAll, "ITaskSettings::get_Hidden", "Failed to get hidden state of task. HRESULT = "},
        {failuresOfAll, "ITaskSettings::put_StartWhenAvailable",
            "Failed to set \"start when available\" state of task. HRESULT = "},
        {failuresOfAll, "ITaskSettings::get_StartWhenAvailable",
            "Failed to get \"start when available\" state of task. HRESULT = "},
        {failuresOfAll, "ITaskDefinition::get_Principal", "Failed to get principal. HRESULT = "},
        {failuresOfAll, "IPrincipal::put_GroupId", "Failed to set group id. HRESULT = "},
        {failuresOfAll, "IPrincipal::put_UserId", "Failed to set user id. HRESULT = "},
        {failuresOfAll, "IPrincipal::put_LogonType", "Failed to put logon type. HRESULT = "},
        {failuresOfAll, "IPrincipal::get_UserId", "Failed to get user ID. HRESULT: "},
        {failuresOfAll, "ITaskDefinition::get_Triggers", "Failed to get a task triggers collection. HRESULT = "},
        {failuresOfAll, "ITriggerCollection::get_Count", "Failed to get a task triggers collection count. HRESULT = "},
        {failuresOfAll, "ITriggerCollection::Remove", "Failed to remove trigger with index 1. HRESULT = ", {S_OK}},
        {failuresOfAll, "ITriggerCollection::Create", "Failed to create trigger. HRESULT = "},
        {failuresOfAll, "IDailyTrigger::QueryInterface", "Failed to query trigger interface. HRESULT = "},
        {failuresOfAll, "ITrigger::put_Id", "Failed to put trigger ID. HRESULT = "},
        {failuresOfAll, "ITrigger::put_StartBoundary", "Failed to put start boundary. HRESULT = "},
        {failuresOfAll, "ITrigger::put_EndBoundary", "Failed to put end boundary. HRESULT = "},
        {failuresOfAll, "IDailyTrigger::put_DaysInterval", "Failed to put days interval. HRESULT = "},
        {failuresOfAll, "IWeeklyTrigger::put_WeeksInterval", "Failed to put days interval. HRESULT = "},
        {failuresOfAll, "IWeeklyTrigger::put_DaysOfWeek", "Failed to put days of week. HRESULT = "},
    };
    long code = E_FAIL;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.call);
        Machine::plan(row.call, row.before);
        Machine::plan(row.call, {++code});
        EXPECT_EQ(row.use(*task), 1);
        EXPECT_TRUE(log.has(2, row.message + std::to_string(code))) << log.text();
        EXPECT_TRUE(Machine::state().tasks.empty());
    }
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
        EXPECT_TRUE(log.has(4, "Created action")) << log.text();
        Machine::plan("IExecAction::QueryInterface", {E_NOINTERFACE}); // of the first
    }
    EXPECT_EQ(task->getActionPath(), L"second");
    EXPECT_TRUE(log.has(4, "Task has 2actions.")) << log.text();
    EXPECT_TRUE(log.has(4, "Opened action #2")) << log.text();
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
    EXPECT_EQ(task->getState(), TaskState::Enabled);
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
    EXPECT_TRUE(task->save(L"", L""));
    task->setEnabled(false);
    EXPECT_EQ(task->getState(), TaskState::Enabled);
    Machine::change([](auto& state) {
        state.tasks.at(0).lastRun = devhost::machine::runOf(GetCurrentProcess(), GetCurrentProcessId());
    });
    EXPECT_EQ(task->getState(), TaskState::Running);
}

} // namespace
} // namespace vx::scheduler
