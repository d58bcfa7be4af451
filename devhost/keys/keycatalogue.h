#pragma once

#include "store/protocol/value.h"

#include <optional>
#include <span>
#include <string_view>

namespace devhost::host {

/// The type that a command line or a script names: "bool", "int32", "int64", "string", "json" (also
/// "object"); nothing for any other text.
std::optional<store::Type> typeFromName(std::string_view name);

struct CatalogueKey {
    std::string_view name;
    store::Type type;
};

/// The keys that plug-in and agent use, with their types, so that nobody has to give a type by hand.
/// Constant data; any thread.
class KeyCatalogue {
public:
    /// In ascending order of their names.
    static std::span<const CatalogueKey> keys();
    /// Nothing for a key that is not listed or whose type is left to its users.
    static std::optional<store::Type> typeOf(std::string_view key);
};

/// The keys that the host's own commands use.
namespace keys {
inline constexpr std::string_view enabled = "windows.tarnpatch.enabled";
inline constexpr std::string_view scanStart = "windows.tarnpatch.remote_operations.scan_for_updates.start";
inline constexpr std::string_view scanAck = "windows.tarnpatch.remote_operations.scan_for_updates.ack";
inline constexpr std::string_view installStart = "windows.tarnpatch.remote_operations.install_updates.start";
inline constexpr std::string_view installAck = "windows.tarnpatch.remote_operations.install_updates.ack";
inline constexpr std::string_view installResult = "windows.tarnpatch.remote_operations.install_updates.result";
inline constexpr std::string_view updatesToInstall =
    "windows.tarnpatch.remote_operations.install_updates.updates_to_install";
inline constexpr std::string_view deploymentQueue = "windows.tarnpatch.installation.deployment_queue";
inline constexpr std::string_view completionTimestamp = "windows.tarnpatch.installation.completion.timestamp";
inline constexpr std::string_view patchesToInstall = "windows.tarnpatch.current_status.patches_to_install";
inline constexpr std::string_view statusEnabled = "status.windows.tarnpatch.enabled";
inline constexpr std::string_view lastScan = "status.windows.tarnpatch.scanning.last_scanning.timestamp";
inline constexpr std::string_view missingUpdates = "status.windows.tarnpatch.scanning.last_scanning.missing_updates";
inline constexpr std::string_view installationLog = "status.windows.tarnpatch.installation.log.entries";
inline constexpr std::string_view profile = "status.windows.meridia.last_successful_update_timestamp";
} // namespace keys

} // namespace devhost::host
