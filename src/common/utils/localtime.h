#pragma once

#include "vxtl/datetime.h"

#include <cstdint>
#include <optional>

namespace vx::tarn::common::utils {

/// Local date and time of seconds since the Unix epoch; nothing before it and where the system knows none. Any thread.
std::optional<DateTime::Parts> toLocalTime(std::int64_t time) noexcept;

/// The way back, without the milliseconds. A time that comes twice, or not at all, as clocks are put back or forward,
/// is the system's choice.
std::optional<std::int64_t> fromLocalTime(const DateTime::Parts& parts) noexcept;

} // namespace vx::tarn::common::utils
