#pragma once

#include "common/windowsupdates/iwindowsupdates.h"

namespace vx::tarn::common {

class IAutomaticUpdatesDriver;

/// What IWindowsUpdates::getLastInstallationDate gives.
Ticks lastInstallationDate(IAutomaticUpdatesDriver& driver);

} // namespace vx::tarn::common
