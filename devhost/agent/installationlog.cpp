#include "agent/installationlog.h"

#include "common/patches/updateid.h"
#include "common/settings/tarnpatchstatus.h"
#include "settings-api/settings.h"
#include "vxtl/clock.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <ranges>

namespace devhost::agent {

namespace {

using nlohmann::json;
using namespace vx::tarn;

json toEntry(const common::ListedPatch& patch, const common::PatchStatus& status, InstallationResultItem result)
{
    common::InstallationLogEntry entry;
    entry.patchSpecifier = patch.specifier;
    entry.updateId = common::deriveUpdateId(patch);
    entry.installationTime = vx::systemTicks() / vx::ticksPerSecond;
    entry.bulletinId = patch.bulletinId;
    entry.productName = patch.productName;
    entry.servicePack = patch.servicePack;
    entry.updateName = patch.updateName;
    entry.installationResult = result;
    entry.status = status;
    return toJson(entry);
}

bool isOf(const json& entry, const json& updateId)
{
    return entry.is_object() && entry.contains("update_id") && entry["update_id"] == updateId;
}

} // namespace

void InstallationLog::record(const std::vector<common::PatchInfo>& patches, const common::PatchStatus& status,
    InstallationResultItem result) const
{
    const TarnpatchStatus report(m_settings);
    json log = report.installation.log.entries();
    if (!log.is_array())
        log = json::array();
    // Backwards, so that the first of the new ones stands in front.
    for (const auto& patch : std::views::reverse(patches)) {
        auto entry = toEntry(patch, status, result);
        const auto found =
            std::ranges::find_if(log, [&](const json& other) { return isOf(other, entry["update_id"]); });
        if (found == log.end())
            log.insert(log.begin(), std::move(entry));
        else
            *found = std::move(entry);
    }
    m_settings->setJsonValue(report.installation.log.entries.key(), log);
}

} // namespace devhost::agent
