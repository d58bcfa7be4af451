#include "vxtl/clock.h"

#include <windows.h>

namespace vx {

Ticks systemTicks() noexcept
{
    constexpr Ticks unixEpoch = 116'444'736'000'000'000; // since 1601-01-01
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    return static_cast<Ticks>((static_cast<std::uint64_t>(now.dwHighDateTime) << 32 | now.dwLowDateTime)) - unixEpoch;
}

std::chrono::milliseconds uptime() noexcept
{
    return std::chrono::milliseconds(GetTickCount64());
}

} // namespace vx
