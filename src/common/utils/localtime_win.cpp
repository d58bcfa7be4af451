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

} // namespace vx::tarn::common::utils
