#include "tarnctl/log/console.h"

#include <windows.h>

namespace tarnctl::log {

logreading::Moment localNow()
{
    FILETIME utc, local;
    GetSystemTimeAsFileTime(&utc);
    SYSTEMTIME universal, civil;
    FileTimeToSystemTime(&utc, &universal);
    SystemTimeToTzSpecificLocalTime(nullptr, &universal, &civil);
    SystemTimeToFileTime(&civil, &local);
    constexpr std::int64_t ticksPerMs = 10'000, epoch = 116'444'736'000'000'000;
    const auto ticks = std::int64_t{local.dwHighDateTime} << 32 | local.dwLowDateTime;
    return (ticks - epoch) / ticksPerMs;
}

bool isColourTerminal()
{
    const auto console = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD mode = 0;
    return GetConsoleMode(console, &mode) && SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

} // namespace tarnctl::log
