#include "tarnhd/currentoperations.h"

#include "common/operationinfo.h"
#include "common/updateid.h"
#include "logging/logstream.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace vx::tarn {

using namespace common;

namespace {

bool isDone(const PatchStatus& status)
{
    return status.value == ValueItem::InstallationCompleted || status.value == ValueItem::InstallationExcluded;
}

} // namespace

CurrentOperations::CurrentOperations(std::shared_ptr<settings::Settings> settingsHandle)
    : m_settingsHandle(std::move(settingsHandle)), m_settings(m_settingsHandle), m_status(m_settingsHandle)
{}

CurrentOperations::~CurrentOperations() = default;

void CurrentOperations::update()
{
    VX_LOG_SCOPE();
    // The queue without its mutex: the store hands out whole values, and the next pass repairs what is old.
    const auto queue = listFromJson<DeploymentItem>(m_settings.installation.deploymentQueue());
    auto missing = listFromJson<MissingUpdate>(m_status.scanning.lastScanning.missingUpdates());
    const auto log = listFromJson<InstallationLogEntry>(m_status.installation.log.entries());

    std::vector<PatchInfo> patches = getMissingUpdates(std::move(missing));
    const std::vector<OperationInfo> filters = getApplicableFilters(queue);
    const LogIndex index = indexOf(log);

    std::vector<PatchToInstall> result;
    for (PatchInfo& patch : patches) {
        std::wstring updateId = deriveUpdateId(patch);
        const InstallationLogEntry* entry = nullptr;
        const bool found = getStatusForUpdate(updateId, index, entry);
        // Filters are tried for logged patches too: a bad rule warns at each evaluation.
        const bool matched = std::any_of(filters.begin(), filters.end(),
            [&](const OperationInfo& filter) { return filter.isApplicable(patch, updateId); });
        if (!(found || matched) || (found && isDone(entry->status)))
            continue;
        PatchStatus status = found ? entry->status : PatchStatus{ValueItem::InstallationRequested, {}};
        result.push_back({toMissingUpdate(std::move(patch), std::move(updateId)), std::move(status)});
    }
    m_settings.currentStatus.setPatchesToInstall(listToJson(result));
}

CurrentOperations::LogIndex CurrentOperations::indexOf(const std::vector<InstallationLogEntry>& log)
{
    LogIndex index;
    index.reserve(log.size());
    for (const InstallationLogEntry& entry : log)
        index.emplace(entry.updateId, &entry);
    return index;
}

std::vector<PatchInfo> CurrentOperations::getMissingUpdates(std::vector<MissingUpdate> missingUpdates) const
{
    VX_LOG_SCOPE();
    std::vector<PatchInfo> patches;
    patches.reserve(missingUpdates.size());
    for (MissingUpdate& update : missingUpdates)
        patches.emplace_back(std::move(update));
    return patches;
}

std::vector<OperationInfo> CurrentOperations::getApplicableFilters(
    const std::vector<DeploymentItem>& deploymentItems) const
{
    VX_LOG_SCOPE();
    std::vector<OperationInfo> filters;
    filters.reserve(deploymentItems.size());
    for (const DeploymentItem& item : deploymentItems)
        filters.emplace_back(item.updateId);
    return filters;
}

bool CurrentOperations::getStatusForUpdate(
    const std::wstring& updateId, const LogIndex& log, const InstallationLogEntry*& entry) const
{
    VX_LOG_SCOPE();
    const auto found = log.find(updateId);
    if (found == log.end())
        return false;
    entry = found->second;
    return true;
}

} // namespace vx::tarn
