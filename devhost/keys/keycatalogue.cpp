#include "keys/keycatalogue.h"

#include <algorithm>

namespace devhost::host {

namespace {

using enum store::Type;

constexpr CatalogueKey catalogue[] = {
    {keys::profile, Int64},
    {keys::statusEnabled, Boolean},
    {"status.windows.tarnpatch.installation.last_installation.restart_computer_needed", Boolean},
    {keys::installationLog, Object},
    {keys::missingUpdates, Object},
    {keys::lastScan, Int64},
    {"windows.gorse2.current_proxy", String},
    {"windows.tarnpatch.certificates.already_in_storage", Boolean},
    {"windows.tarnpatch.communication.hq_proxy_url", String},
    {"windows.tarnpatch.communication.ignore_revocation_server_offline_error", Boolean},
    {"windows.tarnpatch.communication.use_http_proxy", String},
    {"windows.tarnpatch.communication.user_defined_proxy", String},
    {keys::patchesToInstall, Object},
    {keys::enabled, Boolean},
    {"windows.tarnpatch.installation.automatic.frequency", String},
    {"windows.tarnpatch.installation.automatic.hour", Int32},
    {"windows.tarnpatch.installation.automatic.mode", String},
    {"windows.tarnpatch.installation.completion.timeout", Int32},
    {keys::completionTimestamp, Int64},
    {"windows.tarnpatch.installation.completion.wait", Boolean},
    {keys::deploymentQueue, Object},
    {"windows.tarnpatch.installation.in_progress", Boolean},
    {"windows.tarnpatch.installation.reboot.ask_user", Boolean},
    {"windows.tarnpatch.installation.reboot.force_in", Int32},
    {"windows.tarnpatch.installation.reboot.force_in_seconds", Int64},
    {"windows.tarnpatch.installation.reboot.postpone_for", Int32},
    {"windows.tarnpatch.installation.reboot.show_flyer_policy", String},
    {keys::installAck, Int64},
    {keys::installResult, String},
    {keys::installStart, Int64},
    {keys::updatesToInstall, String},
    {keys::scanAck, Int64},
    {keys::scanStart, Int64},
    {"windows.tarnpatch.scanning.automatic.maximum_rescanning_period", Int32},
    {"windows.tarnpatch.scanning.automatic.polling_interval", Int32},
    {"windows.tarnpatch.scanning.automatic.scanning_on_system_startup.delay", Int32},
    {"windows.tarnpatch.scanning.automatic.scanning_on_system_startup.enabled", Boolean},
    {"windows.tarnpatch.scanning.automatic.scanning_on_system_startup.randomization_interval", Int32},
};
static_assert(std::ranges::is_sorted(catalogue, {}, &CatalogueKey::name), "typeOf searches it by halves");

} // namespace

std::optional<store::Type> typeFromName(std::string_view name)
{
    if (name == "json")
        return Object;
    for (const auto type : {Boolean, Int32, Int64, String, Object})
        if (name == store::typeName(type))
            return type;
    return std::nullopt;
}

std::span<const CatalogueKey> KeyCatalogue::keys()
{
    return catalogue;
}

std::optional<store::Type> KeyCatalogue::typeOf(std::string_view key)
{
    const auto found = std::ranges::lower_bound(catalogue, key, {}, &CatalogueKey::name);
    return found == std::end(catalogue) || found->name != key ? std::nullopt : std::optional(found->type);
}

} // namespace devhost::host
