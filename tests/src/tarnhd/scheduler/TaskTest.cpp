#include "tarnhd/scheduler/task.h"

#include "fakeobjects.h"
#include "support/logcapture.h"
#include "tarnhd/scheduler/trigger.h"
#include "vxtl-com/weeklytrigger.h"

#include <functional>
#include <gmock/gmock.h>

namespace vx::scheduler {
namespace {

using Calls = std::vector<std::string>;
using Codes = std::vector<long>;
using Operation = std::function<bool(Task&)>;
using Triggers = std::vector<std::shared_ptr<Trigger>>;

/// The operations, each true unless it answers with nothing.
const std::map<std::string, Operation> operations{
    {"getDescription", [](Task& task) { return !task.getDescription().empty(); }},
    {"setDescription", [](Task& task) { return task.setDescription(L"text"); }},
    {"getActionPath", [](Task& task) { return !task.getActionPath().empty(); }},
    {"setActionPath", [](Task& task) { return task.setActionPath(L"path"); }},
    {"getActionArguments", [](Task& task) { return !task.getActionArguments().empty(); }},
    {"setActionArguments", [](Task& task) { return task.setActionArguments(L"arguments"); }},
    {"setSignature", [](Task& task) { return task.setSignature(L"text"); }},
    {"hasSignature", [](Task& task) { return task.hasSignature(L"text"); }},
    {"getPriority", [](Task& task) { return task.getPriority() != 0; }},
    {"setPriority", [](Task& task) { return task.setPriority(5); }},
    {"isEnabled", [](Task& task) { return task.isEnabled(); }},
    {"setEnabled", [](Task& task) { return task.setEnabled(true); }},
    {"isHidden", [](Task& task) { return task.isHidden(); }},
    {"setHidden", [](Task& task) { return task.setHidden(false); }},
    {"isStartWhenAvailable", [](Task& task) { return task.isStartWhenAvailable(); }},
    {"setStartWhenAvailable", [](Task& task) { return task.setStartWhenAvailable(true); }},
    {"getUserId", [](Task& task) { return !task.getUserId().empty(); }},
    {"setUserId", [](Task& task) { return task.setUserId(L"somebody"); }},
    {"setUserId system", [](Task& task) { return task.setUserId(L""); }},
    {"setTriggers", [](Task& task) { return task.setTriggers(Triggers(1, std::make_shared<DailyTrigger>(0, 0))); }},
    {"setTriggers null", [](Task& task) { return task.setTriggers(Triggers(1)); }},
    {"setTriggers none", [](Task& task) { return task.setTriggers({}); }},
    {"getState", [](Task& task) { return task.getState() != TaskState::Unknown; }},
    {"save", [](Task& task) { return task.save(L"", L"ignored"); }},
    {"save account", [](Task& task) { return task.save(L"somebody", L"secret"); }},
};

class TaskTest : public testing::Test {
protected:
    /// As if nothing had been called yet.
    bool run(const std::string& operation, bool registered = false)
    {
        script.counts.clear();
        script.calls.clear();
        Task task(L"name", fake::object<ITaskDefinition>(),
            registered ? fake::object<IRegisteredTask>() : com::ComPtr<IRegisteredTask>(), fake::object<ITaskFolder>());
        return operations.at(operation)(task);
    }

    support::LogCapture log;
    fake::Script script;
};

TEST_F(TaskTest, writesAndReadsInTheDefinition)
{
    script.texts = {{"IRegistrationInfo::get_Description", {L"x"}}, {"IExecAction::get_Path", {L"x"}},
        {"IExecAction::get_Arguments", {L"x"}}, {"ITaskDefinition::get_Data", {L"text"}},
        {"IPrincipal::get_UserId", {L"x"}}};
    script.numbers = {{"IActionCollection::get_Count", {1}}, {"ITaskSettings::get_Priority", {1}},
        {"ITaskSettings::get_Enabled", {VARIANT_TRUE}}, {"ITaskSettings::get_Hidden", {VARIANT_TRUE}},
        {"ITaskSettings::get_StartWhenAvailable", {VARIANT_TRUE}}};
    const struct {
        const char *operation, *lastCall;
    } rows[] = {
        {"getDescription", "IRegistrationInfo::get_Description"},
        {"setDescription", "IRegistrationInfo::put_Description text"},
        {"getActionPath", "IExecAction::get_Path"},
        {"setActionPath", "IExecAction::put_Path path"},
        {"getActionArguments", "IExecAction::get_Arguments"},
        {"setActionArguments", "IExecAction::put_Arguments arguments"},
        {"setSignature", "ITaskDefinition::put_Data text"},
        {"hasSignature", "ITaskDefinition::get_Data"},
        {"getPriority", "ITaskSettings::get_Priority"},
        {"setPriority", "ITaskSettings::put_Priority -1"},
        {"isEnabled", "ITaskSettings::get_Enabled"},
        {"setEnabled", "ITaskSettings::put_Enabled -1"},
        {"isHidden", "ITaskSettings::get_Hidden"},
        {"setHidden", "ITaskSettings::put_Hidden 0"},
        {"isStartWhenAvailable", "ITaskSettings::get_StartWhenAvailable"},
        {"setStartWhenAvailable", "ITaskSettings::put_StartWhenAvailable -1"},
        {"getUserId", "IPrincipal::get_UserId"},
        {"setUserId", "IPrincipal::put_LogonType 1"},
        {"setUserId system", "IPrincipal::put_LogonType 5"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.operation);
        EXPECT_TRUE(run(row.operation));
        EXPECT_EQ(script.calls.back(), row.lastCall);
    }
}

TEST_F(TaskTest, saysWhichCallFailed)
{
    script.numbers = {{"IActionCollection::get_Count", {1}}, {"ITriggerCollection::get_Count", {2}}};
    const struct {
        const char *operation, *call;
        Codes results; ///< of the calls of this name, the failing one last
        const char* message;
    } rows[] = {
        {"getDescription", "ITaskDefinition::get_RegistrationInfo", {7},
            "Failed to get task registration info. HRESULT = "},
        {"getDescription", "IRegistrationInfo::get_Description", {7}, "Failed to get task description. HRESULT = "},
        {"setDescription", "ITaskDefinition::get_RegistrationInfo", {7},
            "Failed to get task registration info. HRESULT = "},
        {"setDescription", "IRegistrationInfo::put_Description", {7}, "Failed to put task description. HRESULT = "},
        {"getActionPath", "ITaskDefinition::get_Actions", {7}, "Failed to get action for the task. HRESULT = "},
        {"getActionPath", "IActionCollection::get_Count", {7}, "Failed to get actions count. HRESULT = "},
        {"setActionPath", "IActionCollection::get_Item", {7}, "Failed to get action item: 1. HRESULT = "},
        {"getActionPath", "IExecAction::get_Path", {7}, "Failed to get action path. HRESULT = "},
        {"setActionPath", "IExecAction::put_Path", {7}, "Failed to set action path. HRESULT = "},
        {"getActionArguments", "IExecAction::get_Arguments", {7}, "Failed to get action parameters. HRESULT = "},
        {"setActionArguments", "IExecAction::put_Arguments", {7}, "Failed to set action parameters. HRESULT = "},
        {"setActionPath", "IAction::QueryInterface", {1, 7}, "Failed to query action interface. HRESULT = "},
        {"setSignature", "ITaskDefinition::put_Data", {7}, "Failed to set task signature. HRESULT = "},
        {"hasSignature", "ITaskDefinition::get_Data", {7}, "Failed to get task definition. HRESULT = "},
        {"getPriority", "ITaskDefinition::get_Settings", {7}, "Failed to get task settings. HRESULT = "},
        {"getPriority", "ITaskSettings::get_Priority", {7}, "Failed to get task priority. HRESULT = "},
        {"setPriority", "ITaskSettings::put_Priority", {7}, "Failed to set task priority. HRESULT = "},
        {"isEnabled", "ITaskSettings::get_Enabled", {7}, "Failed to get enabled state of task. HRESULT = "},
        {"setEnabled", "ITaskDefinition::get_Settings", {7}, "Failed to get task settings. HRESULT = "},
        {"setEnabled", "ITaskSettings::put_Enabled", {7}, "Failed to set enabled state of task. HRESULT = "},
        {"isHidden", "ITaskSettings::get_Hidden", {7}, "Failed to get hidden state of task. HRESULT = "},
        {"setHidden", "ITaskSettings::put_Hidden", {7}, "Failed to set hidden state of task. HRESULT = "},
        {"isStartWhenAvailable", "ITaskSettings::get_StartWhenAvailable", {7},
            "Failed to get \"start when available\" state of task. HRESULT = "},
        {"setStartWhenAvailable", "ITaskSettings::put_StartWhenAvailable", {7},
            "Failed to set \"start when available\" state of task. HRESULT = "},
        {"getUserId", "ITaskDefinition::get_Principal", {7}, "Failed to get principal. HRESULT = "},
        {"getUserId", "IPrincipal::get_UserId", {7}, "Failed to get user ID. HRESULT: "},
        {"setUserId", "ITaskDefinition::get_Principal", {7}, "Failed to get principal. HRESULT = "},
        {"setUserId", "IPrincipal::put_UserId", {7}, "Failed to set user id. HRESULT = "},
        {"setUserId system", "IPrincipal::put_GroupId", {7}, "Failed to set group id. HRESULT = "},
        {"setUserId", "IPrincipal::put_LogonType", {7}, "Failed to put logon type. HRESULT = "},
        {"setTriggers", "ITaskDefinition::get_Triggers", {7}, "Failed to get a task triggers collection. HRESULT = "},
        {"setTriggers", "ITriggerCollection::get_Count", {7},
            "Failed to get a task triggers collection count. HRESULT = "},
        {"setTriggers", "ITriggerCollection::Remove", {0, 7}, "Failed to remove trigger with index 1. HRESULT = "},
        {"setTriggers", "ITriggerCollection::Create", {7}, "Failed to create trigger. HRESULT = "},
        {"getState", "ITaskDefinition::get_Settings", {7}, "Failed to get task settings. HRESULT = "},
        {"getState", "ITaskSettings::get_Enabled", {7}, "Failed to get enabled state of task. HRESULT = "},
        {"save", "ITaskDefinition::get_RegistrationInfo", {7}, "Failed to get registration info. HRESULT = "},
        {"save", "IRegistrationInfo::put_Author", {7}, "Failed to put author. HRESULT = "},
        {"save", "ITaskDefinition::get_Principal", {7}, "Failed to get principal. HRESULT = "},
        {"save", "IPrincipal::put_LogonType", {7}, "Failed to set logon type. HRESULT = "},
        {"save", "ITaskDefinition::get_Settings", {7}, "Failed to get task settings. HRESULT = "},
        {"save", "ITaskSettings::put_MultipleInstances", {7}, "Failed to set multiple instances. HRESULT = "},
        {"save", "ITaskSettings::put_ExecutionTimeLimit", {7}, "Failed to set execution time limit. HRESULT = "},
        {"save", "IPrincipal::put_LogonType", {0, 7}, "Failed to put logon type. HRESULT = "},
        {"save", "ITaskFolder::RegisterTaskDefinition", {7}, "Failed to register task definition. HRESULT = "},
    };
    long code = E_FAIL;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.operation + std::string(" ") + row.call);
        Codes results = row.results;
        for (long& result : results)
            result = result == 7 ? ++code : result == 1 ? E_NOINTERFACE : result;
        script.results = {{row.call, results}};
        EXPECT_FALSE(run(row.operation));
        EXPECT_TRUE(log.has(2, row.message + std::to_string(code))) << log.text();
        EXPECT_TRUE(script.calls.empty() || script.calls.back().starts_with(row.call) ||
                    std::string(row.call).ends_with("QueryInterface"))
            << "the failing call was not the last one: " << script.calls.back();
    }
    EXPECT_TRUE(log.has(2, "Failed to create trigger or to add trigger to a collection.")) << log.text();
}

TEST_F(TaskTest, takesTheFirstActionThatStartsAProgramAndMakesOneToWriteOnly)
{
    const auto actionCalls = [this] {
        Calls calls = script.calls;
        std::erase_if(calls, [](const std::string& call) { return !call.starts_with("IActionCollection::"); });
        return calls;
    };
    script.numbers = {{"IActionCollection::get_Count", {3}}};
    script.results = {{"IAction::QueryInterface", {E_NOINTERFACE}}};
    EXPECT_TRUE(run("setActionPath"));
    EXPECT_EQ(actionCalls(),
        (Calls{"IActionCollection::get_Count", "IActionCollection::get_Item 1", "IActionCollection::get_Item 2"}));
    EXPECT_TRUE(log.has(4, "Task has 3actions.")) << log.text();
    EXPECT_TRUE(log.has(4, "Opened action #2")) << log.text();
    script.numbers.clear();
    script.results.clear();
    EXPECT_TRUE(run("setActionArguments"));
    EXPECT_EQ(actionCalls(), (Calls{"IActionCollection::get_Count", "IActionCollection::Create 0"}));
    EXPECT_TRUE(log.has(4, "Created action")) << log.text();
    EXPECT_FALSE(run("getActionPath"));
    EXPECT_EQ(actionCalls(), Calls{"IActionCollection::get_Count"});
    script.results = {{"IActionCollection::Create", {E_FAIL}}};
    EXPECT_FALSE(run("setActionPath"));
    EXPECT_TRUE(log.has(2, "Failed to create an action. HRESULT = -2147467259")) << log.text();
}

TEST_F(TaskTest, knowsItsSignatureExactly)
{
    for (const wchar_t* data : {L"", L"Text", L"text "}) {
        script.texts = {{"ITaskDefinition::get_Data", {data}}};
        EXPECT_FALSE(run("hasSignature"));
    }
    EXPECT_EQ(log.count("Failed to get task definition. HRESULT = 0"), 1u) << log.text();
}

TEST_F(TaskTest, mapsLevelsToPrioritiesAndBack)
{
    Task task(L"name", fake::object<ITaskDefinition>(), {}, fake::object<ITaskFolder>());
    const long priorities[] = {-1, 0, 1, 3, 4, 6, 7, 10, 11};
    script.numbers["ITaskSettings::get_Priority"].assign(std::begin(priorities), std::end(priorities));
    std::vector<int> levels;
    for (std::size_t i = 0; i < std::size(priorities); ++i)
        levels.push_back(task.getPriority());
    EXPECT_EQ(levels, (std::vector<int>{0, 1, 2, 2, 3, 3, 4, 4, 0}));
    std::string written;
    for (int level = 0; level <= 5; ++level) {
        EXPECT_TRUE(task.setPriority(level));
        written += script.calls.back().substr(std::string("ITaskSettings::put_Priority").size());
    }
    EXPECT_EQ(written, " -1 0 1 4 10 -1");
}

TEST_F(TaskTest, replacesTriggersFromTheLastOn)
{
    script.numbers = {{"ITriggerCollection::get_Count", {2}}};
    EXPECT_TRUE(run("setTriggers none"));
    EXPECT_EQ(script.calls, (Calls{"ITaskDefinition::get_Triggers", "ITriggerCollection::get_Count",
                                "ITriggerCollection::Remove 2", "ITriggerCollection::Remove 1"}));
    EXPECT_TRUE(run("setTriggers"));
    EXPECT_THAT(script.calls, testing::Contains("ITrigger::put_Id trigger0"));
    EXPECT_TRUE(log.has(4, "1 triggers to be set")) << log.text();
    EXPECT_FALSE(run("setTriggers null"));
    EXPECT_TRUE(log.has(2, "Failed to create an empty trigger.")) << log.text();
}

TEST_F(TaskTest, tellsTheStateOfTheRegisteredTaskOrElseOfTheDefinition)
{
    const struct {
        bool registered;
        long state, result, enabled;
        TaskState expected;
    } rows[] = {
        {true, 1, S_OK, VARIANT_TRUE, TaskState::Disabled},
        {true, 2, S_OK, VARIANT_FALSE, TaskState::Enabled},
        {true, 3, S_OK, VARIANT_FALSE, TaskState::Enabled},
        {true, 4, S_OK, VARIANT_FALSE, TaskState::Running},
        {true, 0, S_OK, VARIANT_TRUE, TaskState::Enabled},
        {true, 4, E_FAIL, VARIANT_FALSE, TaskState::Disabled},
        {false, 4, S_OK, VARIANT_TRUE, TaskState::Enabled},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.state);
        script.counts.clear();
        script.numbers = {{"IRegisteredTask::get_State", {row.state}}, {"ITaskSettings::get_Enabled", {row.enabled}}};
        script.results = {{"IRegisteredTask::get_State", {row.result}}};
        const Task task(L"name", fake::object<ITaskDefinition>(),
            row.registered ? fake::object<IRegisteredTask>() : com::ComPtr<IRegisteredTask>(), {});
        EXPECT_EQ(task.getState(), row.expected);
    }
}

TEST_F(TaskTest, savesForTheLocalSystemOrAnAccount)
{
    const Calls first{"ITaskDefinition::get_RegistrationInfo", "IRegistrationInfo::put_Author Tarnpatch Agent",
        "ITaskDefinition::get_Principal", "IPrincipal::put_LogonType 3", "ITaskDefinition::get_Settings",
        "ITaskSettings::put_MultipleInstances 2", "ITaskSettings::put_ExecutionTimeLimit P3D",
        "ITaskDefinition::get_Principal"};
    const struct {
        const char* operation;
        bool registered;
        Calls last;
    } rows[] = {
        {"save", false,
            {"IPrincipal::put_GroupId NT AUTHORITY\\SYSTEM", "IPrincipal::put_LogonType 5",
                "ITaskFolder::RegisterTaskDefinition name 38 empty empty 5 D:(A;;FA;;;BA)(A;;FA;;;SY)"}},
        {"save account", true,
            {"IPrincipal::put_UserId somebody", "IPrincipal::put_LogonType 1",
                "ITaskFolder::RegisterTaskDefinition name 38 somebody secret 1 D:(A;;FA;;;BA)(A;;FA;;;SY)"}},
    };
    for (const auto& row : rows) {
        Calls expected = first;
        expected.insert(expected.end(), row.last.begin(), row.last.end());
        EXPECT_TRUE(run(row.operation, row.registered));
        EXPECT_EQ(script.calls, expected);
        EXPECT_EQ(log.count("Task already exists. Update it."), row.registered ? 1u : 0u) << log.text();
    }
    EXPECT_EQ(log.count("Task successfully saved."), 2u) << log.text();
}

TEST_F(TaskTest, isRegisteredOnceItIsSaved)
{
    Task task(L"name", fake::object<ITaskDefinition>(), {}, fake::object<ITaskFolder>());
    EXPECT_TRUE(task.save(L"", L""));
    script.numbers = {{"IRegisteredTask::get_State", {4}}};
    EXPECT_EQ(task.getState(), TaskState::Running);
}

} // namespace
} // namespace vx::scheduler
