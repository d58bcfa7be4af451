#include "common/utils/timetext.h"

#include "common/utils/localtime.h"
#include "vxtl/datetime.h"

#include <cstdio>

namespace vx::tarn::common::utils {

std::wstring timeToString(std::int64_t time)
{
    const auto t = toLocalTime(time);
    if (!t)
        return {};
    char text[64];
    const int length = std::snprintf(
        text, sizeof(text), "%04u-%02u-%02u %02u:%02u:%02u", t->year, t->month, t->day, t->hour, t->minute, t->second);
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
