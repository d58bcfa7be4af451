#pragma once

#include "common/settings/settingsenumerations.h"

#include <string>

namespace devhost::agent {

/// A patch in this state is dealt with once the computer has been rebooted.
bool waitsForReboot(vx::tarn::ValueItem state);
/// A patch in this state needs nothing more.
bool isInstalled(vx::tarn::ValueItem state);
/// The result, as the installation log names it, that goes with a state.
std::string suggestedResult(vx::tarn::ValueItem state);

} // namespace devhost::agent
