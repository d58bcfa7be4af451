#include "agent/suspendeddeployment.h"

#include "agent/installationlog.h"
#include "agent/patchstates.h"
#include "common/settings/tarnpatchstatus.h"
#include "vxtl/clock.h"

#include <algorithm>
#include <random>
#include <ranges>
#include <stdexcept>

namespace devhost::agent {

namespace {

using namespace vx::tarn;
using namespace vx::tarn::common;

constexpr std::int64_t thisMachine = 1;

utils::Guid randomGuid()
{
    std::random_device random;
    utils::Guid guid{random(), static_cast<std::uint16_t>(random()), static_cast<std::uint16_t>(random()), {}};
    for (auto& byte : guid.data4)
        byte = static_cast<std::uint8_t>(random());
    return guid;
}

ReportEvent patchEvent(const utils::Guid& deployment, std::int64_t number, PatchStateTarget state, bool terminal)
{
    const PatchStateReport report{
        deployment, thisMachine, number, state, false, terminal, vx::systemTicks() / vx::ticksPerSecond};
    return terminal ? ReportEvent{ReportEventType::OfflinePatchStatusReturnCode, report, 0, {}}
                    : ReportEvent{ReportEventType::OfflinePatchStatus, report, 0, {}};
}

ReportEvent machineEvent(const utils::Guid& deployment, MachineStateTarget state, bool terminal)
{
    return {ReportEventType::OfflineMachineStatus,
        MachineStateReport{deployment, thisMachine, state, false, terminal, vx::systemTicks() / vx::ticksPerSecond}, 0,
        {}};
}

utils::Guid deploymentOf(const std::vector<ReportEvent>& events)
{
    for (const auto& event : events)
        if (const auto* machine = std::get_if<MachineStateReport>(&event.record))
            return machine->deploymentId;
    return {};
}

/// By the last report on it. Without one a patch counts as installed.
bool hasFailed(std::int64_t number, const std::vector<ReportEvent>& events)
{
    for (const auto& event : std::views::reverse(events))
        if (const auto* patch = std::get_if<PatchStateReport>(&event.record); patch && patch->patchId == number)
            return patch->failure;
    return false;
}

} // namespace

void SuspendedDeployment::suspend(const std::vector<PatchInfo>& patches, ValueItem state) const
{
    PatchMap numbered;
    for (const auto& patch : patches)
        numbered.emplace(static_cast<std::int64_t>(numbered.size() + 1), patch);
    if (!m_storage->savePatches(numbered))
        throw std::runtime_error("the patch storage cannot be written");
    const auto deployment = randomGuid();
    const auto target = state == ValueItem::InstallationWillContinueAfterReboot
                            ? PatchStateTarget::PendingPostBootActions
                            : PatchStateTarget::PendingReboot;
    for (const auto& [number, patch] : numbered)
        report(patchEvent(deployment, number, target, false));
    report(machineEvent(deployment, MachineStateTarget::SafeRebootPending, false));
}

bool SuspendedDeployment::finish() const
{
    if (!m_storage->hasPatchStates() || m_storage->isInstallationFinished())
        return false;
    const auto kept = load();
    const auto deployment = deploymentOf(kept.events);
    report(machineEvent(deployment, MachineStateTarget::Rebooted, false));
    for (const auto& [number, patch] : kept.patches)
        if (!hasFailed(number, kept.events))
            report(patchEvent(deployment, number, PatchStateTarget::Finished, true));
    report(machineEvent(deployment, MachineStateTarget::Finished, true));
    if (!m_storage->reportInstallationFinished(true))
        throw std::runtime_error("the patch storage cannot be written");
    return true;
}

bool SuspendedDeployment::complete(const std::function<std::shared_ptr<vx::settings::Settings>()>& makeSettings) const
{
    if (!m_storage->hasPatchStates())
        return false;
    const auto kept = load();
    std::vector<PatchInfo> installed;
    std::vector<PatchInfo> failed;
    for (const auto& [number, patch] : kept.patches)
        (hasFailed(number, kept.events) ? failed : installed).push_back(patch);
    const auto settings = makeSettings();
    const InstallationLog log(settings);
    for (const auto& [patches, state] :
        {std::pair(&installed, ValueItem::InstallationCompleted), std::pair(&failed, ValueItem::InstallationFailed)})
        if (!patches->empty())
            log.record(*patches, {state, {}}, suggestedResult(state));
    TarnpatchStatus(settings).installation.lastInstallation.restartComputerNeeded.set(false);
    // Last: a run that breaks off before this is done once more.
    m_storage->clear();
    return true;
}

SuspendedDeployment::Kept SuspendedDeployment::load() const
{
    Kept kept;
    if (!m_storage->loadPatches(kept.patches, kept.events))
        throw std::runtime_error("the patch storage cannot be read");
    return kept;
}

void SuspendedDeployment::report(const ReportEvent& event) const
{
    if (!m_storage->addPatchState(event))
        throw std::runtime_error("the patch storage cannot be written");
}

} // namespace devhost::agent
