#include "agent/agentscript.h"

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
    const std::pair<const char*, Type> rows[] = {
        {R"("status.windows.tarnpatch.installation.last_installation.restart_computer_needed": true)", Type::Boolean},
        {R"("windows.tarnpatch.scanning.automatic.polling_interval": 5)", Type::Int32},
        {R"("windows.tarnpatch.Enabled": 1)", Type::Int64},
        {R"("x.number": -7)", Type::Int64},
        {R"("x.text": "a")", Type::String},
        {R"("x.object": {"a": 1})", Type::Object},
        {R"("y.number": {"type": "int32", "value": 7})", Type::Int32},
        {R"("y.json": {"type": "json", "value": "a"})", Type::Object},
    };
    for (const auto& [member, type] : rows)
        EXPECT_EQ(onlyRun("\"set\": {" + std::string(member) + "}").values.at(0).value.type(), type) << member;
}

TEST(AgentScript, leadsADeploymentToAnInstalledOrAWaitingPatch)
{
    EXPECT_FALSE(onlyRun(R"("deploy": false)").deploy);
    EXPECT_THAT(onlyRun(R"("deploy": true)").deploy.value().states,
        ElementsAre(FileDownloading, FileDownloadCompleted, InstallationExecuting, InstallationCompleted));
    EXPECT_THAT(onlyRun(R"("deploy": {"reboot": true})").deploy.value().states,
        ElementsAre(
            FileDownloading, FileDownloadCompleted, InstallationExecuting, InstallationWillContinueAfterReboot));
}

TEST(AgentScript, saysWhatIsWrong)
{
    // Whole scripts, or the members of a run.
    const std::pair<std::string, const char*> rows[] = {
        {"{", "the script is no JSON"},
        {R"({"runs": []})", "the script must be an object with a list \"runs\" of at least one run"},
        {R"({"runs": [{}, 5]})", "runs[1] must be an object"},
        {R"({"runs": [{}], "continue": []})", "continue must be a list of at least one element"},
        {R"("exit": 5)", "runs[0].exit is unknown"},
        {R"("exitCode": 99999999999)", "runs[0].exitCode must be a 32-bit number"},
        {R"("durationMs": -1)", "runs[0].durationMs must be a number of milliseconds"},
        {R"("hang": 1)", "runs[0].hang must be true or false"},
        {R"("set": {"windows.tarnpatch.enabled": 1})", "windows.tarnpatch.enabled: 1 is no bool"},
        {R"("set": {"a": {"type": "frob", "value": 3}})", "a: unknown type frob"},
        {R"("deploy": 1)", "runs[0].deploy must be true, false or an object"},
        {R"("deploy": {"items": 0})", "runs[0].deploy.items must be a number of items"},
        {R"("deploy": {"states": ["file_downloading", "done"]})",
            "runs[0].deploy.states[1] must be the state of a patch"},
        {R"("deploy": {"result": "good"})", "runs[0].deploy.result must be the result of an installation"},
        {R"("deploy": {"pauses": [{"at": "file_downloading"}]})",
            "runs[0].deploy.pauses[0] must be an object with at and"},
        {R"("deploy": {"pauses": [{"waitForEvent": "b"}]})", "runs[0].deploy.pauses[0] must be an object with at and"},
        {R"("deploy": {"pauses": [{"at": "installation_failed", "waitForEvent": "b"}]})",
            "runs[0].deploy.pauses: installation_failed is none of the states"},
        {R"("deploy": {"reboot": true, "states": ["installation_completed"]})",
            "runs[0].deploy.states must end in a state that waits for a reboot"},
    };
    for (const auto& [text, line] : rows) {
        const auto parse = [&] { text[0] == '"' ? onlyRun(text) : AgentScript::parse(text).runOf(0); };
        EXPECT_THAT(parse, testing::ThrowsMessage<ScriptError>(testing::StartsWith(line)));
    }
}

} // namespace devhost::agent
