#pragma once

#include <cstdint>
#include <ctime>
#include <optional>

namespace vx::tarn::common::utils {

/// Local date and time of seconds since the Unix epoch; nothing where the system knows none. Any thread.
std::optional<std::tm> toLocalTime(std::int64_t time) noexcept;

} // namespace vx::tarn::common::utils
