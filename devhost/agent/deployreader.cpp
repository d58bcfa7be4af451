#include "agent/deployreader.h"

#include "agent/agentscript.h"
#include "agent/patchstates.h"
#include "agent/scriptmember.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace devhost::agent {

namespace {

using vx::tarn::ValueItem;

ValueItem readState(const Member& member)
{
    return readWord<ValueItem>(member, "the state of a patch");
}

std::size_t readItems(const Member& member)
{
    if (!member.value.is_number_unsigned() || member.value == 0)
        member.mustBe("a number of items");
    return member.value.get<std::size_t>();
}

// A pause without the event that ends it would be an agent that hangs: that is refused here.
Pause readPause(const Member& entry)
{
    Pause pause;
    bool placed = false;
    readMembers(entry, [&](const std::string& name, const Member& member) {
        if (name == "at") {
            pause.at = readState(member);
            placed = true;
        } else if (name == "startedEvent") {
            pause.gate.startedEvent = readText(member);
        } else if (name == "waitForEvent") {
            pause.gate.waitForEvent = readText(member);
        } else {
            member.isUnknown();
        }
    });
    if (!placed || pause.gate.waitForEvent.empty())
        entry.mustBe("an object with at and waitForEvent");
    return pause;
}

void readPart(DeployScript& script, const std::string& name, const Member& member)
{
    if (name == "items")
        script.items = readItems(member);
    else if (name == "states")
        readElements(member, [&](const Member& state) { script.states.push_back(readState(state)); });
    else if (name == "result")
        script.result = readWord<vx::tarn::InstallationResultItem>(member, "the result of an installation");
    else if (name == "code")
        script.code = readText(member);
    else if (name == "stepMs")
        script.step = readDuration(member);
    else if (name == "pauses")
        readElements(member, [&](const Member& pause) { script.pauses.push_back(readPause(pause)); });
    else if (name == "reboot")
        script.reboot = readBool(member);
    else
        member.isUnknown();
}

void complete(DeployScript& script, const std::string& place)
{
    using enum ValueItem;
    if (script.states.empty())
        script.states = {FileDownloading, FileDownloadCompleted, InstallationExecuting,
            script.reboot ? InstallationWillContinueAfterReboot : InstallationCompleted};
    if (script.reboot && !waitsForReboot(script.states.back()))
        throw ScriptError(place + ".states must end in a state that waits for a reboot");
    for (const auto& pause : script.pauses)
        if (std::ranges::find(script.states, pause.at) == script.states.end())
            throw ScriptError(place + ".pauses: " + vx::toText(pause.at) + " is none of the states");
}

} // namespace

std::optional<DeployScript> readDeploy(const Member& member)
{
    if (!member.value.is_boolean() && !member.value.is_object())
        member.mustBe("true, false or an object");
    if (member.value == false)
        return std::nullopt;
    DeployScript script;
    if (member.value.is_object())
        readMembers(member, [&](const std::string& name, const Member& part) { readPart(script, name, part); });
    complete(script, member.place);
    return script;
}

} // namespace devhost::agent
