#include "vxtl/clock.h"

#include <windows.h>

namespace vx {

Ticks systemTicks() noexcept
{
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    return static_cast<Ticks>(std::uint64_t{now.dwHighDateTime} << 32 | now.dwLowDateTime) - unixEpochAsFileTime;
}

std::chrono::milliseconds uptime() noexcept
{
    return std::chrono::milliseconds(GetTickCount64());
}

} // namespace vx
