#include "agent/agentscript.h"

#include <gmock/gmock.h>

namespace devhost::agent {

using enum vx::tarn::ValueItem;
using testing::ElementsAre;

namespace {

AgentRun runWith(const std::string& deploy)
{
    return AgentScript::parse(R"({"runs": [{"deploy": )" + deploy + "}]}").runOf(0);
}

} // namespace

TEST(DeployScript, leadsToAnInstalledOrAWaitingPatch)
{
    EXPECT_FALSE(runWith("false").deploy);
    const auto usual = runWith("true").deploy.value();
    EXPECT_THAT(usual.states,
        ElementsAre(FileDownloading, FileDownloadCompleted, InstallationExecuting, InstallationCompleted));
    EXPECT_FALSE(usual.reboot);
    const auto reboot = runWith(R"({"reboot": true})").deploy.value();
    EXPECT_THAT(reboot.states, ElementsAre(FileDownloading, FileDownloadCompleted, InstallationExecuting,
                                   InstallationWillContinueAfterReboot));
}

TEST(DeployScript, readsAllItsMembers)
{
    const auto script = runWith(R"({"items": 2, "states": ["file_downloading", "installation_failed"],
        "result": "download_error", "code": "5", "stepMs": 0,
        "pauses": [{"at": "file_downloading", "startedEvent": "a", "waitForEvent": "b"}]})")
                            .deploy.value();
    EXPECT_EQ(script.items, 2u);
    EXPECT_THAT(script.states, ElementsAre(FileDownloading, InstallationFailed));
    EXPECT_EQ(script.result, "download_error");
    EXPECT_EQ(script.code, "5");
    EXPECT_EQ(script.step.count(), 0);
    ASSERT_EQ(script.pauses.size(), 1u);
    EXPECT_EQ(script.pauses[0].at, FileDownloading);
    EXPECT_EQ(script.pauses[0].gate.startedEvent, "a");
    EXPECT_EQ(script.pauses[0].gate.waitForEvent, "b");
}

TEST(DeployScript, saysWhatIsWrong)
{
    const struct {
        const char* deploy;
        const char* line;
    } rows[] = {
        {"1", "runs[0].deploy must be true, false or an object"},
        {R"({"item": 1})", "runs[0].deploy.item is unknown"},
        {R"({"items": 0})", "runs[0].deploy.items must be a number of items"},
        {R"({"states": []})", "runs[0].deploy.states must be a list of at least one element"},
        {R"({"states": ["file_downloading", "done"]})", "runs[0].deploy.states[1] must be the state of a patch"},
        {R"({"states": [1]})", "runs[0].deploy.states[0] must be a text"},
        {R"({"result": "good"})", "runs[0].deploy.result must be the result of an installation"},
        {R"({"stepMs": -1})", "runs[0].deploy.stepMs must be a number of milliseconds"},
        {R"({"pauses": [{"at": "file_downloading"}]})", "runs[0].deploy.pauses[0] must be an object with at and"},
        {R"({"pauses": [{"waitForEvent": "b"}]})", "runs[0].deploy.pauses[0] must be an object with at and"},
        {R"({"pauses": [{"at": "installation_failed", "waitForEvent": "b"}]})",
            "runs[0].deploy.pauses: installation_failed is none of the states"},
        {R"({"reboot": true, "states": ["installation_completed"]})",
            "runs[0].deploy.states must end in a state that waits for a reboot"},
    };
    for (const auto& row : rows) {
        try {
            runWith(row.deploy);
            ADD_FAILURE() << row.deploy << " was taken";
        } catch (const ScriptError& error) {
            EXPECT_THAT(error.what(), testing::StartsWith(row.line));
        }
    }
}

TEST(DeployScript, keepsAListForEachCommand)
{
    const auto script =
        AgentScript::parse(R"({"runs": [{"exitCode": 1}], "complete": [{"exitCode": 2}, {"idle": true}]})");
    EXPECT_EQ(script.runOf(0).exitCode, 1);
    EXPECT_EQ(script.runOf(0, Task::Complete).exitCode, 2);
    EXPECT_TRUE(script.runOf(1, Task::Complete).idle);
    EXPECT_EQ(script.runOf(0, Task::Continue).exitCode, 0);
    EXPECT_THROW(AgentScript::parse(R"({"runs": [{}], "continue": []})"), ScriptError);
}

} // namespace devhost::agent
