#include "common/timetext.h"

#include "common/localtime.h"
#include "vxtl/datetime.h"

#include <cstdio>

namespace vx::tarn::common::utils {

std::wstring timeToString(std::int64_t time)
{
    const auto t = toLocalTime(time);
    if (!t)
        return {};
    char text[64];
    const int length = std::snprintf(text, sizeof(text), "%04d-%02d-%02d %02d:%02d:%02d", t->tm_year + 1900,
        t->tm_mon + 1, t->tm_mday, t->tm_hour, t->tm_min, t->tm_sec);
    return std::wstring(text, text + length);
}

std::wstring dateTimeToString(const DateTime& date)
{
    const DateTime::Parts p = date.parts();
    char text[64];
    const int length = std::snprintf(text, sizeof(text), "%04u-%02u-%02u %02u%02u%02u%03u", p.year, p.month, p.day,
        p.hour, p.minute, p.second, p.millisecond);
    return std::wstring(text, text + length);
}

} // namespace vx::tarn::common::utils
