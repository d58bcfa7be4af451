#include "common/utils/localtime.h"
#include "vxtl/clock.h"

#include <limits>
#include <windows.h>

namespace vx::tarn::common::utils {

std::optional<DateTime::Parts> toLocalTime(std::int64_t time) noexcept
{
    if (time < 0 || time > (std::numeric_limits<Ticks>::max() - unixEpochAsFileTime) / ticksPerSecond)
        return std::nullopt;
    ULARGE_INTEGER ticks;
    ticks.QuadPart = static_cast<std::uint64_t>(time * ticksPerSecond + unixEpochAsFileTime);
    const FILETIME fileTime = {ticks.LowPart, ticks.HighPart};
    SYSTEMTIME utc, local;
    if (!FileTimeToSystemTime(&fileTime, &utc) || !SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local))
        return std::nullopt;
    return DateTime::Parts{local.wYear, local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond, 0};
}

std::optional<std::int64_t> fromLocalTime(const DateTime::Parts& parts) noexcept
{
    const auto word = [](unsigned value) { return static_cast<WORD>(value); };
    const SYSTEMTIME local = {word(parts.year), word(parts.month), 0, word(parts.day), word(parts.hour),
        word(parts.minute), word(parts.second), 0};
    SYSTEMTIME utc;
    FILETIME fileTime;
    if (!TzSpecificLocalTimeToSystemTime(nullptr, &local, &utc) || !SystemTimeToFileTime(&utc, &fileTime))
        return std::nullopt;
    const ULARGE_INTEGER ticks = {{fileTime.dwLowDateTime, fileTime.dwHighDateTime}};
    return (static_cast<Ticks>(ticks.QuadPart) - unixEpochAsFileTime) / ticksPerSecond;
}

} // namespace vx::tarn::common::utils
