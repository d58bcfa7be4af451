#include "agent/agentscript.h"

#include <gmock/gmock.h>
#include <map>

namespace devhost::agent {

using enum vx::tarn::ValueItem;
using store::Type;
using testing::ElementsAre;

namespace {

AgentRun onlyRun(const std::string& members)
{
    return AgentScript::parse("{\"runs\": [{" + members + "}]}").runOf(0);
}

} // namespace

TEST(AgentScript, typesTheValuesItSets)
{
    const auto run = onlyRun(R"("durationMs": 20, "set": {
        "status.windows.tarnpatch.installation.last_installation.restart_computer_needed": true,
        "windows.tarnpatch.scanning.automatic.polling_interval": 5, "windows.tarnpatch.Enabled": 1,
        "windows.tarnpatch.installation.deployment_queue": [],
        "x.flag": false, "x.number": -7, "x.text": "a", "x.object": {"a": 1},
        "y.number": {"type": "int32", "value": 7}, "y.json": {"type": "json", "value": "a"},
        "y.object": {"type": "object", "value": "a"}})");
    EXPECT_EQ(run.duration.count(), 20);
    std::map<std::string, Type> types;
    for (const auto& value : run.values)
        types[value.key] = value.value.type();
    EXPECT_EQ(
        types, (std::map<std::string, Type>{
                   {"status.windows.tarnpatch.installation.last_installation.restart_computer_needed", Type::Boolean},
                   {"windows.tarnpatch.scanning.automatic.polling_interval", Type::Int32},
                   {"windows.tarnpatch.Enabled", Type::Int64},
                   {"windows.tarnpatch.installation.deployment_queue", Type::Object},
                   {"x.flag", Type::Boolean},
                   {"x.number", Type::Int64},
                   {"x.text", Type::String},
                   {"x.object", Type::Object},
                   {"y.number", Type::Int32},
                   {"y.json", Type::Object},
                   {"y.object", Type::Object},
               }));
}

TEST(AgentScript, leadsADeploymentToAnInstalledOrAWaitingPatch)
{
    EXPECT_FALSE(onlyRun(R"("deploy": false)").deploy);
    const auto usual = onlyRun(R"("deploy": true)").deploy.value();
    EXPECT_THAT(usual.states,
        ElementsAre(FileDownloading, FileDownloadCompleted, InstallationExecuting, InstallationCompleted));
    EXPECT_FALSE(usual.reboot);
    const auto reboot = onlyRun(R"("deploy": {"reboot": true})").deploy.value();
    EXPECT_THAT(reboot.states, ElementsAre(FileDownloading, FileDownloadCompleted, InstallationExecuting,
                                   InstallationWillContinueAfterReboot));
}

TEST(AgentScript, readsADeploymentsMembers)
{
    const auto script = onlyRun(R"("deploy": {"items": 2, "states": ["file_downloading", "installation_failed"],
        "result": "download_error", "code": "5", "stepMs": 0,
        "pauses": [{"at": "file_downloading", "startedEvent": "a", "waitForEvent": "b"}]})")
                            .deploy.value();
    EXPECT_EQ(script.items, 2u);
    EXPECT_THAT(script.states, ElementsAre(FileDownloading, InstallationFailed));
    EXPECT_EQ(script.result, vx::tarn::InstallationResultItem::DownloadError);
    EXPECT_EQ(script.code, "5");
    EXPECT_EQ(script.step.count(), 0);
    ASSERT_EQ(script.pauses.size(), 1u);
    EXPECT_EQ(script.pauses[0].at, FileDownloading);
    EXPECT_EQ(script.pauses[0].gate.startedEvent, "a");
    EXPECT_EQ(script.pauses[0].gate.waitForEvent, "b");
}

TEST(AgentScript, saysWhatIsWrong)
{
    const struct {
        const char* text;
        const char* line;
    } rows[] = {
        {"{", "the script is no JSON"},
        {"[]", "the script must be an object with a list \"runs\""},
        {R"({"runs": []})", "the script must be an object with a list \"runs\" of at least one run"},
        {R"({"runs": [{}, 5]})", "runs[1] must be an object"},
        {R"({"runs": [{}], "continue": []})", "continue must be a list of at least one element"},
    };
    for (const auto& row : rows)
        EXPECT_THAT(
            [&] { AgentScript::parse(row.text); }, testing::ThrowsMessage<ScriptError>(testing::StartsWith(row.line)));
    const struct {
        const char* members;
        const char* line;
    } runs[] = {
        {R"("exit": 5)", "runs[0].exit is unknown"},
        {R"("exitCode": "8")", "runs[0].exitCode must be an integer"},
        {R"("exitCode": 99999999999)", "runs[0].exitCode must be a 32-bit number"},
        {R"("durationMs": -1)", "runs[0].durationMs must be a number of milliseconds"},
        {R"("hang": 1)", "runs[0].hang must be true or false"},
        {R"("missingUpdates": {})", "runs[0].missingUpdates must be an array"},
        {R"("set": {"windows.tarnpatch.enabled": 1})", "windows.tarnpatch.enabled: 1 is no bool"},
        {R"("set": {"a": {"type": "int32", "value": 3000000000}})", "a: 3000000000 is no int32"},
        {R"("set": {"a": {"type": "frob", "value": 3}})", "a: unknown type frob"},
        {R"("deploy": 1)", "runs[0].deploy must be true, false or an object"},
        {R"("deploy": {"item": 1})", "runs[0].deploy.item is unknown"},
        {R"("deploy": {"items": 0})", "runs[0].deploy.items must be a number of items"},
        {R"("deploy": {"states": []})", "runs[0].deploy.states must be a list of at least one element"},
        {R"("deploy": {"states": ["file_downloading", "done"]})",
            "runs[0].deploy.states[1] must be the state of a patch"},
        {R"("deploy": {"states": [1]})", "runs[0].deploy.states[0] must be a text"},
        {R"("deploy": {"result": "good"})", "runs[0].deploy.result must be the result of an installation"},
        {R"("deploy": {"pauses": [{"at": "file_downloading"}]})",
            "runs[0].deploy.pauses[0] must be an object with at and"},
        {R"("deploy": {"pauses": [{"waitForEvent": "b"}]})", "runs[0].deploy.pauses[0] must be an object with at and"},
        {R"("deploy": {"pauses": [{"at": "installation_failed", "waitForEvent": "b"}]})",
            "runs[0].deploy.pauses: installation_failed is none of the states"},
        {R"("deploy": {"reboot": true, "states": ["installation_completed"]})",
            "runs[0].deploy.states must end in a state that waits for a reboot"},
    };
    for (const auto& row : runs)
        EXPECT_THAT([&] { onlyRun(row.members); }, testing::ThrowsMessage<ScriptError>(testing::StartsWith(row.line)));
}

TEST(AgentScript, keepsAListForEachCommand)
{
    const auto script =
        AgentScript::parse(R"({"runs": [{"exitCode": 1}], "complete": [{"exitCode": 2}, {"idle": true}]})");
    EXPECT_EQ(script.runOf(0).exitCode, 1);
    EXPECT_EQ(script.runOf(0, Task::Complete).exitCode, 2);
    EXPECT_TRUE(script.runOf(1, Task::Complete).idle);
    EXPECT_EQ(script.runOf(0, Task::Continue).exitCode, 0);
}

} // namespace devhost::agent
