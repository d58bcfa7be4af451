#pragma once

#include <memory>

namespace vx::meridia {
class SettingsApi;
}

namespace tarnctl {

/// The machine's store as it is, without the plug-in's cache, which would answer for a store that is away. Only read
/// it. Throws CommandError when the host's library is missing, and as SettingsApi's constructor.
std::shared_ptr<vx::meridia::SettingsApi> openStore();

} // namespace tarnctl
