#include "machine/localnow.h"

#include <windows.h>

namespace devhost::machine {

namespace {

Moment toMoment(const SYSTEMTIME& time)
{
    using namespace std::chrono;
    return local_days(year(time.wYear) / month(time.wMonth) / day(time.wDay)) + hours(time.wHour) +
           minutes(time.wMinute) + seconds(time.wSecond);
}

} // namespace

Moment localNow()
{
    SYSTEMTIME time;
    GetLocalTime(&time);
    return toMoment(time);
}

Moment utcNow()
{
    SYSTEMTIME time;
    GetSystemTime(&time);
    return toMoment(time);
}

} // namespace devhost::machine
