#include "tarnhd/autoinstallation/schedule.h"

#include "common/utils/localtime.h"
#include "logging/logstream.h"
#include "vxtl/exception.h"

namespace vx::tarn {

using logging::Level;
using logging::LogStream;

namespace {

constexpr Ticks ticksPerHour = 3600 * ticksPerSecond;
constexpr Ticks ticksPerDay = 24 * ticksPerHour;

struct Severity {
    ModeItem mode;
    const wchar_t* text;
};
constexpr Severity severities[] = {
    {ModeItem::Disable, L""},
    {ModeItem::InstallAll, L"all"},
    {ModeItem::InstallCritical, L"critical"},
    {ModeItem::InstallCriticalAndImportant, L"important"},
};

struct DayOfWeek {
    FrequencyItem frequency;
    std::int32_t bit;
};
constexpr DayOfWeek daysOfWeek[] = {
    {FrequencyItem::EveryDay, 0},
    {FrequencyItem::EveryMonday, 2},
    {FrequencyItem::EveryTuesday, 4},
    {FrequencyItem::EveryWednesday, 8},
    {FrequencyItem::EveryThursday, 16},
    {FrequencyItem::EveryFriday, 32},
    {FrequencyItem::EverySaturday, 64},
    {FrequencyItem::EverySunday, 1},
};

Ticks startOfLocalDay(Ticks now)
{
    auto parts = common::utils::toLocalTime(now / ticksPerSecond);
    if (!parts)
        VX_THROW(BaseException, L"No local time");
    parts->hour = parts->minute = parts->second = 0;
    const auto start = common::utils::fromLocalTime(*parts);
    if (!start)
        VX_THROW(BaseException, L"No local time");
    return *start * ticksPerSecond;
}

} // namespace

std::wstring severityOf(ModeItem mode)
{
    for (const Severity& row : severities)
        if (row.mode == mode)
            return row.text;
    LogStream(Level::Error) << "Severity for the mode " << static_cast<std::int32_t>(mode)
                            << " not found. Fallback to the empty value";
    return {};
}

std::int32_t dayOfWeekOf(FrequencyItem frequency)
{
    for (const DayOfWeek& row : daysOfWeek)
        if (row.frequency == frequency)
            return row.bit;
    LogStream(Level::Error) << "Day of week for the frequency " << static_cast<std::int32_t>(frequency)
                            << " not found. Fallback to the empty value";
    return 0;
}

Ticks startBoundaryOf(Ticks now, std::int32_t hour)
{
    const Ticks boundary = saturatingAdd(startOfLocalDay(now), saturatingMultiply(hour, ticksPerHour));
    return now < boundary ? boundary : saturatingAdd(boundary, ticksPerDay);
}

} // namespace vx::tarn
