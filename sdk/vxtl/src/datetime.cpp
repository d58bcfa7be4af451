#include "vxtl/datetime.h"

#include "vxtl/clock.h"
#include "vxtl/exception.h"

namespace vx {

namespace {

constexpr std::uint64_t ticksPerMinute = 60 * ticksPerSecond;
constexpr std::uint64_t ticksPerHour = 60 * ticksPerMinute;
constexpr std::uint64_t ticksPerDay = 24 * ticksPerHour;

constexpr bool isLeap(unsigned year)
{
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

constexpr unsigned daysInMonth(unsigned year, unsigned month)
{
    constexpr unsigned days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeap(year) ? 29 : days[month - 1];
}

/// From 0001-01-01 to the first day of the year.
constexpr unsigned daysBeforeYear(unsigned year)
{
    const unsigned past = year - 1;
    return past * 365 + past / 4 - past / 100 + past / 400;
}

constexpr std::uint64_t unixEpoch = daysBeforeYear(1970) * 86'400ULL;
static_assert(unixEpoch == 62'135'596'800ULL);

constexpr std::uint64_t toTicks(const DateTime::Parts& p)
{
    unsigned days = daysBeforeYear(p.year) + p.day - 1;
    for (unsigned month = 1; month < p.month; ++month)
        days += daysInMonth(p.year, month);
    return days * ticksPerDay + p.hour * ticksPerHour + p.minute * ticksPerMinute + p.second * ticksPerSecond +
           p.millisecond * ticksPerMillisecond;
}

const wchar_t* firstBadPart(const DateTime::Parts& p)
{
    if (p.year < 1 || p.year > 9999)
        return L"Invalid value for Year";
    if (p.month < 1 || p.month > 12)
        return L"Invalid value for Month";
    if (p.day < 1 || p.day > daysInMonth(p.year, p.month))
        return L"Invalid value for Day";
    if (p.hour >= 24)
        return L"Invalid value for Hour";
    if (p.minute >= 60)
        return L"Invalid value for Minute";
    if (p.second >= 60)
        return L"Invalid value for Second";
    if (p.millisecond > 999)
        return L"Invalid value for Millisecond";
    return nullptr;
}

} // namespace

DateTime::DateTime(const Parts& parts, Kind kind) : m_ticks(0), m_kind(kind)
{
    if (const wchar_t* reason = firstBadPart(parts))
        VX_THROW(BaseException, reason);
    m_ticks = toTicks(parts);
}

DateTime DateTime::fromTime(std::int64_t time) noexcept
{
    if (time == -1)
        return never();
    return {(static_cast<std::uint64_t>(time) + unixEpoch) * ticksPerSecond, Kind::System};
}

DateTime DateTime::never() noexcept
{
    return {neverTicks, Kind::System};
}

const DateTime& DateTime::largest()
{
    static const DateTime date({9999, 12, 31, 23, 59, 59, 99});
    return date;
}

DateTime::Parts DateTime::parts() const noexcept
{
    Parts p{};
    auto days = static_cast<unsigned>(m_ticks / ticksPerDay);
    // Start from a year that is never too late.
    for (p.year = days / 366 + 1; daysBeforeYear(p.year + 1) <= days;)
        ++p.year;
    days -= daysBeforeYear(p.year);
    for (p.month = 1; p.month < 12 && days >= daysInMonth(p.year, p.month); ++p.month)
        days -= daysInMonth(p.year, p.month);
    p.day = days + 1;
    p.hour = static_cast<unsigned>(m_ticks % ticksPerDay / ticksPerHour);
    p.minute = static_cast<unsigned>(m_ticks % ticksPerHour / ticksPerMinute);
    p.second = static_cast<unsigned>(m_ticks % ticksPerMinute / ticksPerSecond);
    p.millisecond = static_cast<unsigned>(m_ticks % ticksPerSecond / ticksPerMillisecond);
    return p;
}

} // namespace vx
