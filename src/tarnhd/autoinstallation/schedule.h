#pragma once

#include "common/settings/settingsenumerations.h"
#include "vxtl/clock.h"

#include <cstdint>
#include <string>

namespace vx::tarn {

/// The agent's word for what the mode installs; empty for Disable. A mode that is none is logged and empty.
std::wstring severityOf(ModeItem mode);

/// The bit of the weekday, Sunday's is 1; 0 for EveryDay. A frequency that is none is logged and 0.
std::int32_t dayOfWeekOf(FrequencyItem frequency);

/// When a task of the hour starts for the first time: the hour counted from the start of the local day of `now`, and a
/// day later unless that is after `now`. Any number goes for an hour. On a day when the clocks change the hours since
/// midnight count and not the clock's. Throws BaseException where the system knows no local time.
Ticks startBoundaryOf(Ticks now, std::int32_t hour);

} // namespace vx::tarn
