#include "machine/nextstart.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace devhost::machine {

namespace {

using namespace std::chrono;
using nlohmann::json;

enum TriggerType { Daily = 2, Weekly = 3 };

struct Range {
    Moment start;
    Moment end;
};

std::optional<Range> rangeOf(const json& trigger)
{
    const auto start = parseBoundary(trigger.value("StartBoundary", ""));
    const auto endText = trigger.value("EndBoundary", "");
    const auto end = endText.empty() ? std::optional(Moment::max()) : parseBoundary(endText);
    return start && end ? std::optional(Range{*start, *end}) : std::nullopt;
}

Moment nextDaily(Moment start, Moment now, days interval)
{
    if (now <= start)
        return start;
    const auto passed = (now - start + interval - seconds(1)) / interval;
    return start + passed * interval;
}

/// A week begins on Sunday.
local_days beginOfWeek(local_days day)
{
    return day - (weekday(day) - Sunday);
}

std::optional<Moment> nextWeekly(Moment start, Moment now, weeks interval, unsigned daysOfWeek)
{
    const auto firstDay = floor<days>(start);
    const auto firstWeek = beginOfWeek(firstDay);
    const auto from = std::max(firstDay, floor<days>(now));
    // The rest of a week whose turn it is, the weeks that are left out, and a whole one.
    for (auto day = from; day < from + interval + weeks(1); day += days(1)) {
        const auto moment = day + (start - firstDay);
        const bool isWeeksTurn = (beginOfWeek(day) - firstWeek) % interval == days(0);
        const bool isDaysTurn = daysOfWeek >> weekday(day).c_encoding() & 1;
        if (isWeeksTurn && isDaysTurn && moment >= now)
            return moment;
    }
    return std::nullopt;
}

std::optional<Moment> nextOf(const json& trigger, Moment now)
{
    const auto range = rangeOf(trigger);
    if (!range || !trigger.value("Enabled", true))
        return std::nullopt;
    std::optional<Moment> next;
    if (const auto interval = trigger.value("DaysInterval", 1); trigger.value("Type", 0) == Daily && interval > 0)
        next = nextDaily(range->start, now, days(interval));
    if (const auto interval = trigger.value("WeeksInterval", 1); trigger.value("Type", 0) == Weekly && interval > 0)
        next = nextWeekly(range->start, now, weeks(interval), trigger.value("DaysOfWeek", 0u));
    return next && *next <= range->end ? next : std::nullopt;
}

} // namespace

std::optional<Moment> nextStart(const json& definition, Moment now)
{
    if (!definition.value(json::json_pointer("/Settings/Enabled"), true))
        return std::nullopt;
    std::optional<Moment> earliest;
    for (const auto& trigger : definition.value("Triggers", json::array()))
        if (const auto next = nextOf(trigger, now); next && (!earliest || *next < *earliest))
            earliest = next;
    return earliest;
}

} // namespace devhost::machine
