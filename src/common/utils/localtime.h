#pragma once

#include "vxtl/datetime.h"

#include <cstdint>
#include <optional>

namespace vx::tarn::common::utils {

/// Local date and time of seconds since the Unix epoch; nothing before it and where the system knows none. Any thread.
std::optional<DateTime::Parts> toLocalTime(std::int64_t time) noexcept;

} // namespace vx::tarn::common::utils
