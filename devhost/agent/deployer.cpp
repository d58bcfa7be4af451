#include "agent/deployer.h"

#include "agent/patchstates.h"
#include "agent/say.h"
#include "agent/suspendeddeployment.h"
#include "common/deploymentqueue/ideploymentqueue.h"
#include "common/operationinfo/operationinfo.h"
#include "common/patches/updateid.h"
#include "settings-api/settings.h"
#include "vxtl/clock.h"
#include "vxtl/str.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <windows.h>

namespace devhost::agent {

using namespace vx::tarn;
using vx::str::toUtf8;

Deployer::Deployer(std::shared_ptr<vx::settings::Settings> settings, std::shared_ptr<common::IDeploymentQueue> queue,
    std::shared_ptr<common::IPatchStorage> storage)
    : m_settings(std::move(settings)), m_queue(std::move(queue)), m_storage(std::move(storage)),
      m_tarnpatchSettings(m_settings), m_tarnpatchStatus(m_settings), m_log(m_settings)
{}

void Deployer::deploy(const DeployScript& script)
{
    m_handled.clear();
    if (takeItems(script) == 0)
        return say("nothing in the queue");
    if (script.reboot && !m_handled.empty())
        return leaveForReboot(script.states.back());
    answerRequest(m_handled.empty() || isInstalled(script.states.back()) ? ResultItem::Success : ResultItem::Failed);
}

std::size_t Deployer::takeItems(const DeployScript& script)
{
    std::size_t taken = 0;
    std::wstring item;
    while (taken < script.items && !m_queue->isEmpty()) {
        const auto next = m_queue->getFront();
        if (taken > 0 && next == item) {
            say("the item is still in the queue: it is left to the next start");
            break;
        }
        item = next;
        const auto patches = findPatches(item);
        say("deploying \"" + toUtf8(item) + "\": " + std::to_string(patches.size()) + " updates");
        walkThrough(patches, script);
        // By its text, which is there only once: by now another process may have taken it from the front.
        m_queue->remove(item);
        m_handled.insert(m_handled.end(), patches.begin(), patches.end());
        ++taken;
    }
    return taken;
}

/// The missing updates that a descriptor means, without those that this run has dealt with.
Deployer::Patches Deployer::findPatches(const std::wstring& descriptor) const
{
    const common::OperationInfo operation(descriptor);
    Patches patches;
    for (auto& update :
        common::listFromJson<common::MissingUpdate>(m_tarnpatchStatus.scanning.lastScanning.missingUpdates()))
        patches.emplace_back(std::move(update));
    std::erase_if(patches, [&](const common::PatchInfo& patch) {
        const auto id = deriveUpdateId(patch);
        return !operation.isApplicable(patch, id) ||
               std::ranges::any_of(m_handled, [&](const auto& handled) { return deriveUpdateId(handled) == id; });
    });
    return patches;
}

void Deployer::walkThrough(const Patches& patches, const DeployScript& script) const
{
    if (patches.empty())
        return;
    for (std::size_t i = 0; i < script.states.size(); ++i) {
        const auto state = script.states[i];
        const bool last = i + 1 == script.states.size();
        m_log.record(patches, {state, vx::str::fromUtf8(script.code)},
            last ? script.result.value_or(suggestedResult(state)) : suggestedResult(state));
        say("now " + vx::toText(state));
        for (const auto& pause : script.pauses)
            if (pause.at == state)
                pass(pause.gate);
        Sleep(static_cast<DWORD>(script.step.count()));
    }
}

void Deployer::leaveForReboot(ValueItem state) const
{
    SuspendedDeployment(m_storage).suspend(m_handled, state);
    m_tarnpatchStatus.installation.lastInstallation.restartComputerNeeded.set(true);
    m_tarnpatchSettings.installation.inProgress.set(true);
    m_settings->setInt64Value(
        m_tarnpatchSettings.installation.completion.timestamp.key(), vx::systemTicks() / vx::ticksPerSecond);
    answerRequest(ResultItem::RebootNeeded);
    // Last: with this the plug-in lets go of the agent and acknowledges nothing more.
    m_tarnpatchSettings.installation.completion.wait.set(true);
    say("the rest waits for a reboot");
}

/// Gives an open remote request its result. The plug-in acknowledges when the agent has ended, but not to an agent
/// that leaves for a reboot, so that one acknowledges by itself.
void Deployer::answerRequest(ResultItem result) const
{
    const auto& request = m_tarnpatchSettings.remoteOperations.installUpdates;
    const auto start = request.start();
    if (start == request.ack())
        return;
    request.result.set(result);
    if (result == ResultItem::RebootNeeded)
        request.ack.set(start);
}

} // namespace devhost::agent
