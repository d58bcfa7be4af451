#include "banner.h"

#include <cstdio>
#include <windows.h>

namespace VxQrlLogging {

int utcOffset() noexcept
{
    TIME_ZONE_INFORMATION zone;
    const DWORD season = GetTimeZoneInformation(&zone);
    if (season == TIME_ZONE_ID_INVALID)
        return 3599;
    return static_cast<int>(-(zone.Bias + (season == TIME_ZONE_ID_DAYLIGHT ? zone.DaylightBias : zone.StandardBias)));
}

unsigned long session() noexcept
{
    DWORD id = 0;
    return ProcessIdToSessionId(GetCurrentProcessId(), &id) ? id : 0xDEADBEEF;
}

std::wstring startBanner(bool utc, int offset, unsigned long session)
{
    // Both numbers carry the sign: half an hour west of UTC reads "+0:-30".
    const wchar_t* format = utc ? L"***  LOGGING STARTED  *** (UTC+00:00, local:%+02d:%02d, session: 0x%x)"
                                : L"***  LOGGING STARTED  *** (UTC%+02d:%02d, session: 0x%x)";
    wchar_t text[128];
    const int length =
        _snwprintf(text, sizeof text / sizeof *text, format, offset / 60, offset % 60, static_cast<unsigned>(session));
    return {text, static_cast<std::size_t>(length > 0 ? length : 0)};
}

} // namespace VxQrlLogging
