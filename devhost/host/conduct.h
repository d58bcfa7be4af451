#pragma once

#include "host/pluginloader.h"

#include <optional>
#include <set>
#include <string>

namespace devhost::host {

/// How a host deals with its plug-in in one life of it: each of its steps, done well unless said otherwise.
struct Conduct {
    const char* kind;
    std::optional<std::uint32_t> size = std::nullopt; ///< of the record, instead of the one that the user wants
    /// The export's result.
    std::uint32_t (*initialize)(const PluginLoader& loader, const char* name, HosterApi* hoster,
        PluginApi* record) = [](const PluginLoader& loader, const char* name, HosterApi* hoster, PluginApi* record) {
        return loader.initialize(name, hoster, record);
    };
    /// On a thread of its own; the main callback's result.
    std::uint32_t (*main)(PluginApi* record) = [](PluginApi* record) { return record->pluginMain(record); };
    /// Inside a report of the plug-in, on its thread.
    void (*onReport)(PluginApi* record, std::uint32_t state) = [](PluginApi*, std::uint32_t) {};
    /// The stop callback's result.
    std::uint32_t (*stop)(PluginLoader& loader, PluginApi* record) = [](PluginLoader&, PluginApi* record) {
        return record->pluginStop(record);
    };
};

inline constexpr Conduct goodConduct{.kind = "none"};

/// The kinds of misconduct, each of which breaks the contract between host and plug-in in one point, and needs a record
/// of 36 bytes. A plug-in need not survive it: qrl-probe.dll does, and has a check of the same name.
std::set<std::string> misconductKinds();
/// Lives as long as the process. Throws std::out_of_range for another kind.
const Conduct& misconduct(const std::string& kind);

} // namespace devhost::host
