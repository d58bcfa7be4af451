#include "machine/boundary.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

namespace devhost::machine {

namespace {

constexpr std::string_view pattern = "0000-00-00T00:00:00";

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool fitsPattern(std::string_view text)
{
    return std::ranges::equal(
        text, pattern, [](char c, char expected) { return expected == '0' ? isDigit(c) : c == expected; });
}

unsigned number(std::string_view text, std::size_t position, std::size_t length)
{
    unsigned value = 0;
    std::from_chars(text.data() + position, text.data() + position + length, value);
    return value;
}

} // namespace

std::optional<Moment> parseBoundary(std::string_view text)
{
    using namespace std::chrono;
    if (!fitsPattern(text))
        return std::nullopt;
    const auto date = year(static_cast<int>(number(text, 0, 4))) / month(number(text, 5, 2)) / day(number(text, 8, 2));
    const unsigned hour = number(text, 11, 2), minute = number(text, 14, 2), second = number(text, 17, 2);
    if (!date.ok() || hour > 23 || minute > 59 || second > 59)
        return std::nullopt;
    return local_days(date) + hours(hour) + minutes(minute) + seconds(second);
}

std::string boundaryText(Moment moment, char separator)
{
    using namespace std::chrono;
    const auto days = floor<std::chrono::days>(moment);
    const year_month_day date(days);
    const hh_mm_ss<seconds> time(moment - days);
    char text[64];
    std::snprintf(text, sizeof(text), "%04d-%02u-%02u%c%02d:%02d:%02d", static_cast<int>(date.year()),
        static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()), separator,
        static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
        static_cast<int>(time.seconds().count()));
    return text;
}

} // namespace devhost::machine
