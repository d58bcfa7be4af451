#include "agent/agentscript.h"

#include <gmock/gmock.h>
#include <map>

namespace devhost::agent {

using store::Type;

TEST(AgentScript, typesTheValuesItSets)
{
    const auto script = AgentScript::parse(R"({"runs": [{"durationMs": 20, "set": {
        "status.windows.tarnpatch.installation.last_installation.restart_computer_needed": true,
        "windows.tarnpatch.scanning.automatic.polling_interval": 5, "windows.tarnpatch.Enabled": 1,
        "windows.tarnpatch.installation.deployment_queue": [],
        "x.flag": false, "x.number": -7, "x.text": "a", "x.object": {"a": 1},
        "y.number": {"type": "int32", "value": 7}, "y.json": {"type": "json", "value": "a"},
        "y.object": {"type": "object", "value": "a"}}}]})");
    const auto& run = script.runOf(0);
    EXPECT_EQ(run.duration.count(), 20);
    std::map<std::string, Type> types;
    for (const auto& value : run.values)
        types[value.key] = value.type;
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

TEST(AgentScript, saysWhatIsWrong)
{
    const struct {
        const char* text;
        const char* line;
    } rows[] = {
        {"{", "the script is no JSON"},
        {"[]", "must be an object with a list \"runs\""},
        {R"({"runs": []})", "at least one run"},
        {R"({"runs": [{}, 5]})", "runs[1] must be an object"},
        {R"({"runs": [{"exit": 5}]})", "runs[0].exit is unknown"},
        {R"({"runs": [{"exitCode": "8"}]})", "runs[0].exitCode must be an integer"},
        {R"({"runs": [{"exitCode": 99999999999}]})", "must be a 32-bit number"},
        {R"({"runs": [{"durationMs": -1}]})", "runs[0].durationMs must be a number of milliseconds"},
        {R"({"runs": [{"hang": 1}]})", "runs[0].hang must be true or false"},
        {R"({"runs": [{"missingUpdates": {}}]})", "runs[0].missingUpdates must be an array"},
        {R"({"runs": [{"set": {"windows.tarnpatch.enabled": 1}}]})", "windows.tarnpatch.enabled: 1 is no bool"},
        {R"({"runs": [{"set": {"a": {"type": "int32", "value": 3000000000}}}]})", "is no int32"},
        {R"({"runs": [{"set": {"a": {"type": "frob", "value": 3}}}]})", "a: unknown type frob"},
    };
    for (const auto& row : rows)
        EXPECT_THAT(
            [&] { AgentScript::parse(row.text); }, testing::ThrowsMessage<ScriptError>(testing::HasSubstr(row.line)));
}

} // namespace devhost::agent
