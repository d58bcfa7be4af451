#pragma once

#include "settings-api/details/settingscache.h"
#include "settings-api/settingsimpl.h"

namespace vx::settings::details {

enum class SynchronizeResult {
    Idle,       ///< nothing was waiting, so nothing was tried
    Complete,   ///< all that was waiting is saved
    Incomplete, ///< some values could not be saved and stay pending
    Busy        ///< another thread is at it, or this one further up its stack; nothing was tried
};

/// Gives every pending value to the provider, in the order of names; failures are logged and skipped. Blocks as
/// long as the provider does, with no lock held. Throws only what is no std::exception.
SynchronizeResult synchronize(SettingsCache& cache, SettingsImpl& provider);

} // namespace vx::settings::details
