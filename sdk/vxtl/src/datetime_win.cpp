#include "vxtl/datetime.h"
#include "vxtl/win32exception.h"

#include <windows.h>

namespace vx {

namespace {

constexpr std::uint64_t fileTimeEpoch = 584'388 * 864'000'000'000ULL; // 0001-01-01 to 1601-01-01

} // namespace

DateTime DateTime::now()
{
    SYSTEMTIME t;
    GetSystemTime(&t);
    return DateTime({t.wYear, t.wMonth, t.wDay, t.wHour, t.wMinute, t.wSecond, t.wMilliseconds}, Kind::System);
}

DateTime DateTime::toUtc() const
{
    if (m_kind != Kind::Local)
        return *this;
    // The call would take the wrapped ticks of an earlier date for a good value.
    if (m_ticks < fileTimeEpoch)
        VX_THROW_WIN32(ERROR_INVALID_PARAMETER);
    ULARGE_INTEGER ticks;
    ticks.QuadPart = m_ticks - fileTimeEpoch;
    const FILETIME local = {ticks.LowPart, ticks.HighPart};
    FILETIME utc;
    if (!LocalFileTimeToFileTime(&local, &utc))
        VX_THROW_WIN32(GetLastError());
    ticks.LowPart = utc.dwLowDateTime;
    ticks.HighPart = utc.dwHighDateTime;
    return {ticks.QuadPart + fileTimeEpoch, Kind::Utc};
}

std::int64_t operator-(const DateTime& a, const DateTime& b)
{
    if (a.isNever() || b.isNever())
        VX_THROW_AS(BaseException, L"vx::DateTime::operator -", L"Requested span from/to NEVER.");
    return static_cast<std::int64_t>(a.toUtc().m_ticks - b.toUtc().m_ticks);
}

} // namespace vx
