#include "agent/agentscript.h"

#include "agent/deployreader.h"
#include "agent/scriptmember.h"
#include "agent/stepreader.h"
#include "common/patches/updateid.h"
#include "keys/keycatalogue.h"
#include "machine/system.h"
#include "store/protocol/errorcode.h"
#include "vxtl/parsejson.h"
#include "vxtl/str.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>

namespace devhost::agent {

namespace {

using nlohmann::json;
using store::Type;

constexpr auto sampleScript = R"({"runs": [{
    "stdout": "no script: a scan that finds two updates, and what the queue asks for",
    "deploy": true,
    "missingUpdates": [
        {"patch_specifier": {"id": "6E2C4C1B-9A3F-4D55-8C1E-3B0A7F2D9101", "region": 1},
         "bulletin_id": "TS24-001", "product_name": "Sample Reader",
         "service_pack": "Gold", "update_name": "sample-reader-2.4.1.exe", "end_of_life": "",
         "severity": 1, "category": 1, "vendor": "Sample Makers",
         "user_friendly_update_name": "Sample Reader 2.4.1", "cve_id": ["CVE-2024-0001"],
         "description_url": "https://updates.example/ts24-001"},
        {"patch_specifier": {"id": "6E2C4C1B-9A3F-4D55-8C1E-3B0A7F2D9102", "region": 1},
         "bulletin_id": "TS24-002", "product_name": "Sample Player",
         "service_pack": "Gold", "update_name": "sample-player-7.0.3.msi", "end_of_life": "",
         "severity": 2, "category": 1, "vendor": "Sample Makers",
         "user_friendly_update_name": "Sample Player 7.0.3", "cve_id": [],
         "description_url": "https://updates.example/ts24-002"}]}]})";

int readExitCode(const Member& member)
{
    return static_cast<int>(
        readInteger(member, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::uint32_t>::max()));
}

Type plainTypeOf(const Member& member)
{
    if (const auto type = host::typeOfKey(member.place))
        return *type;
    switch (member.value.type()) {
    case json::value_t::boolean: return Type::Boolean;
    case json::value_t::string: return Type::String;
    case json::value_t::number_integer:
    case json::value_t::number_unsigned: return Type::Int64;
    default: return Type::Object;
    }
}

ScriptedValue makeValue(const std::string& key, Type type, const json& value)
{
    const auto name = vx::toText(type);
    try {
        return {key,
            store::Value::fromJson({{"type", name}, {"value", type == Type::Object ? json(value.dump()) : value}})};
    } catch (const store::StoreException&) {
        throw ScriptError(key + ": " + value.dump() + " is no " + name);
    }
}

/// A value stands plain, or as {"type": "int32", "value": 5} where its key does not tell the type.
ScriptedValue readValue(const Member& member)
{
    const auto& value = member.value;
    if (!value.is_object() || value.size() != 2 || !value.contains("type") || !value.contains("value"))
        return makeValue(member.place, plainTypeOf(member), value);
    const auto name = readText({member.place + ".type", value["type"]});
    const auto type = host::typeFromName(name);
    if (!type)
        throw ScriptError(member.place + ": unknown type " + name);
    return makeValue(member.place, *type, value["value"]);
}

void readMember(AgentRun& run, const std::string& name, const Member& member)
{
    if (name == "durationMs")
        run.duration = readDuration(member);
    else if (name == "waitForEvent")
        run.gate.waitForEvent = readText(member);
    else if (name == "startedEvent")
        run.gate.startedEvent = readText(member);
    else if (name == "stdout")
        run.output = readText(member);
    else if (name == "exitCode")
        run.exitCode = readExitCode(member);
    else if (name == "missingUpdates" && !member.value.is_array())
        member.mustBe("an array");
    else if (name == "missingUpdates")
        run.values.push_back(makeValue(
            host::keyOf(host::keys::status.scanning.lastScanning.missingUpdates), Type::Object, member.value));
    else if (name == "set")
        readMembers(member, [&](const std::string& key, const Member& value) {
            run.values.push_back(readValue({key, value.value}));
        });
    else if (name == "deploy")
        run.deploy = readDeploy(member);
    else if (name == "steps")
        readElements(member, [&](const Member& step) { run.steps.push_back(readStep(step)); });
    else if (name == "testMachine")
        run.isTestMachine = readBool(member);
    else if (name == "idle")
        run.idle = readBool(member);
    else if (name == "hang")
        run.ending = readBool(member) ? Ending::Hang : run.ending;
    else if (name == "crash")
        run.ending = readBool(member) ? Ending::Crash : run.ending;
    else
        member.isUnknown();
}

void checkSteps(AgentRun& run, const Member& entry)
{
    if (!run.steps.empty() && !run.isTestMachine && machine::thisSystem() == machine::System::Windows)
        throw ScriptError(entry.place + ".steps: this is a real Windows, say testMachine if that is there for tests");
    const bool placed = std::ranges::any_of(run.steps, isDeployment);
    if (placed && !run.deploy)
        throw ScriptError(entry.place + ".steps has a place for deploy, which is missing");
    if (run.deploy && !placed)
        run.steps.emplace_back(SystemStep::Deploy);
}

std::vector<AgentRun> readRuns(const Member& list)
{
    std::vector<AgentRun> runs;
    readElements(list, [&](const Member& entry) {
        auto& run = runs.emplace_back();
        readMembers(entry, [&](const std::string& name, const Member& member) { readMember(run, name, member); });
        checkSteps(run, entry);
    });
    return runs;
}

/// The sample with the identifiers that its updates go by.
std::string makeSample()
{
    const auto text = [](const json& update, const char* name) {
        return vx::str::fromUtf8(update.at(name).get<std::string>());
    };
    json script = json::parse(sampleScript);
    for (auto& update : script["runs"][0]["missingUpdates"])
        update["update_id"] = vx::str::toUtf8(vx::tarn::common::deriveUpdateId(text(update, "bulletin_id"),
            text(update, "product_name"), text(update, "service_pack"), text(update, "update_name")));
    return script.dump();
}

json toJson(std::string_view text)
{
    try {
        return vx::parseJson(text);
    } catch (const json::exception&) {
        throw ScriptError("the script is no JSON");
    }
}

} // namespace

std::string_view listOf(Task task)
{
    switch (task) {
    case Task::Continue: return "continue";
    case Task::Complete: return "complete";
    case Task::Queue: return "queue";
    case Task::Ordinary: break;
    }
    return "runs";
}

AgentScript::AgentScript() : AgentScript(parse(makeSample())) {}

AgentScript AgentScript::parse(std::string_view text)
{
    const json script = toJson(text);
    if (!script.is_object() || !script.contains("runs") || !script["runs"].is_array() || script["runs"].empty())
        throw ScriptError("the script must be an object with a list \"runs\" of at least one run");
    Runs runs;
    for (const auto task : {Task::Ordinary, Task::Continue, Task::Complete, Task::Queue}) {
        const std::string list(listOf(task));
        runs[task] = script.contains(list) ? readRuns({list, script[list]}) : std::vector<AgentRun>(1);
    }
    return AgentScript(std::move(runs));
}

AgentScript AgentScript::load(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    if (!stream || !(text << stream.rdbuf()))
        throw ScriptError("the script cannot be read");
    return parse(text.view());
}

const AgentRun& AgentScript::runOf(std::size_t start, Task task) const
{
    const auto& runs = m_runs.at(task);
    return runs[std::min(start, runs.size() - 1)];
}

} // namespace devhost::agent
