#pragma once

#include "common/settings/settingsenumerations.h"

namespace devhost::agent {

/// A patch in this state is dealt with once the computer has been rebooted.
bool waitsForReboot(vx::tarn::ValueItem state);
/// A patch in this state needs nothing more.
bool isInstalled(vx::tarn::ValueItem state);
/// The result in the installation log that goes with a state.
vx::tarn::InstallationResultItem suggestedResult(vx::tarn::ValueItem state);

} // namespace devhost::agent
