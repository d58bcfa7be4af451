#pragma once

#include "settings-api/details/settingscache.h"
#include "settings-api/settingsimpl.h"

namespace vx::settings::details {

/// Gives every pending value to the provider, in the order of names; failures are logged and skipped. Blocks as
/// long as the provider does, with no lock held. Throws only what is no std::exception.
SynchronizeResult synchronize(SettingsCache& cache, SettingsImpl& provider);

} // namespace vx::settings::details
