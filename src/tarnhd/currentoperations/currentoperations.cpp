#include "tarnhd/currentoperations/currentoperations.h"

#include "common/operationinfo/operationinfo.h"
#include "common/patches/updateid.h"
#include "logging/logstream.h"
#include "vxtl/str.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace vx::tarn {

using namespace common;
using nlohmann::json;

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
    json missing = m_status.scanning.lastScanning.missingUpdates();
    const std::vector<MissingPatch> patches = getMissingUpdates(missing);
    const std::vector<LoggedState> log = getLog(m_status.installation.log.entries());
    const std::vector<OperationInfo> filters = getApplicableFilters(queue);
    const LogIndex index = indexOf(log);

    auto result = json::array();
    for (std::size_t i = 0; i < patches.size(); ++i) {
        const auto& [patch, updateId] = patches[i];
        const LoggedState* entry = nullptr;
        const bool found = getStatusForUpdate(updateId, index, entry);
        // Filters are tried for logged patches too: a bad rule warns at each evaluation.
        const bool matched = std::any_of(filters.begin(), filters.end(),
            [&](const OperationInfo& filter) { return filter.isApplicable(patch, updateId); });
        if (!(found || matched) || (found && isDone(entry->status)))
            continue;
        json& published = missing[i];
        published["update_id"] = str::toUtf8(updateId);
        published["status"] = toJson(found ? entry->status : PatchStatus{ValueItem::InstallationRequested, {}});
        result.push_back(std::move(published));
    }
    m_settings.currentStatus.patchesToInstall.set(result);
}

CurrentOperations::LogIndex CurrentOperations::indexOf(const std::vector<LoggedState>& log)
{
    LogIndex index;
    index.reserve(log.size());
    for (const LoggedState& entry : log)
        index.emplace(entry.updateId, &entry);
    return index;
}

std::vector<LoggedState> CurrentOperations::getLog(json entries)
{
    std::vector<LoggedState> log;
    log.reserve(entries.size());
    readEach<LoggedState>(entries, [&](LoggedState& state, json& element, bool) {
        log.push_back(std::move(state));
        element = nullptr;
    });
    return log;
}

std::vector<CurrentOperations::MissingPatch> CurrentOperations::getMissingUpdates(json& missingUpdates) const
{
    VX_LOG_SCOPE();
    std::vector<MissingPatch> patches;
    patches.reserve(missingUpdates.size());
    readEach<ListedUpdate>(missingUpdates, [&](ListedUpdate& update, json& element, bool isAsWritten) {
        // Most are, and building them anew would cost more than all the rest of a pass.
        if (!isAsWritten)
            element = toJson(toMissingUpdate(PatchInfo(fromJson<MissingUpdate>(element)), {}));
        ListedPatch patch(std::move(update));
        std::wstring updateId = deriveUpdateId(patch); // while its texts are in the processor's cache
        patches.push_back({std::move(patch), std::move(updateId)});
    });
    return patches;
}

std::vector<OperationInfo> CurrentOperations::getApplicableFilters(
    const std::vector<DeploymentItem>& deploymentItems) const
{
    VX_LOG_SCOPE();
    std::vector<OperationInfo> filters;
    filters.reserve(deploymentItems.size());
    for (const DeploymentItem& item : deploymentItems)
        filters.emplace_back(item.descriptor);
    return filters;
}

bool CurrentOperations::getStatusForUpdate(
    const std::wstring& updateId, const LogIndex& log, const LoggedState*& entry) const
{
    VX_LOG_SCOPE();
    const auto found = log.find(updateId);
    if (found == log.end())
        return false;
    entry = found->second;
    return true;
}

} // namespace vx::tarn
