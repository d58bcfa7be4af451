#include "agent/installationlog.h"

#include "common/patches/updateid.h"
#include "common/settings/tarnpatchstatus.h"
#include "settings-api/settings.h"
#include "vxtl/clock.h"
#include "vxtl/str.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <ranges>

namespace devhost::agent {

namespace {

using nlohmann::json;
using namespace vx::tarn;
using vx::str::toUtf8;

json toEntry(const common::PatchInfo& patch, const common::PatchStatus& status, const std::string& result)
{
    return {{"patch_specifier", {{"id", toUtf8(patch.specifier.id)}, {"region", patch.specifier.region}}},
        {"update_id", toUtf8(common::deriveUpdateId(patch))},
        {"installation_time", vx::systemTicks() / vx::ticksPerSecond}, {"bulletin_id", toUtf8(patch.bulletinId)},
        {"product_name", toUtf8(patch.productName)}, {"service_pack", toUtf8(patch.servicePack)},
        {"update_name", toUtf8(patch.updateName)}, {"installation_result", result},
        {"status", {{"value", vx::toText(status.value)}, {"code", toUtf8(status.code)}}}};
}

bool isOf(const json& entry, const json& updateId)
{
    return entry.is_object() && entry.contains("update_id") && entry["update_id"] == updateId;
}

} // namespace

void InstallationLog::record(
    const std::vector<common::PatchInfo>& patches, const common::PatchStatus& status, const std::string& result) const
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
