#pragma once

#include <cstdint>
#include <string>

namespace vx {
class DateTime;
}

namespace vx::tarn::common::utils {

/// Seconds since the Unix epoch as local date and time, "2024-02-29 12:34:56". Empty where the system knows no
/// local time: before the epoch and far in the future.
std::wstring timeToString(std::int64_t time);

/// The date as it is, "2024-02-29 123456789": the time in one piece, down to the millisecond.
std::wstring dateTimeToString(const DateTime& date);

} // namespace vx::tarn::common::utils
