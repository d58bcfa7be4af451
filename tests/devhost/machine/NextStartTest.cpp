#include "machine/nextstart.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace devhost::machine;
using nlohmann::json;

namespace {

/// Empty for none.
std::string nextText(const json& definition, const char* now)
{
    const auto next = nextStart(definition, parseBoundary(now).value());
    return next ? boundaryText(*next) : std::string();
}

} // namespace

TEST(NextStart, isTheEarliestOfAllTriggers)
{
    // The first of January 2026 is a Thursday.
    const auto daily = [](int interval) {
        return json{{"Type", 2}, {"StartBoundary", "2026-01-01T12:00:00"}, {"DaysInterval", interval}};
    };
    const auto weekly = [](int interval, int days) {
        return json{
            {"Type", 3}, {"StartBoundary", "2026-01-01T12:00:00"}, {"WeeksInterval", interval}, {"DaysOfWeek", days}};
    };
    const auto with = [](json trigger, const char* name, const json& value) {
        trigger[name] = value;
        return trigger;
    };
    const struct {
        const char* what;
        json triggers;
        const char* now;
        const char* next;
    } rows[] = {
        {"none", json::array(), "2026-01-01T00:00:00", ""},
        {"before the start", {daily(1)}, "2025-12-01T00:00:00", "2026-01-01T12:00:00"},
        {"on the second", {daily(1)}, "2026-01-02T12:00:00", "2026-01-02T12:00:00"},
        {"a second later", {daily(1)}, "2026-01-02T12:00:01", "2026-01-03T12:00:00"},
        {"every third day", {daily(3)}, "2026-02-27T12:00:01", "2026-03-02T12:00:00"},
        {"over", {with(daily(1), "EndBoundary", "2026-01-05T11:00:00")}, "2026-01-05T00:00:00", ""},
        {"switched off", {with(daily(1), "Enabled", false)}, "2026-01-05T00:00:00", ""},
        {"Monday", {weekly(1, 2)}, "2026-01-01T00:00:00", "2026-01-05T12:00:00"},
        {"a day before the start's", {weekly(1, 8)}, "2025-01-01T00:00:00", "2026-01-07T12:00:00"},
        {"every second week, missed", {weekly(2, 16)}, "2026-01-01T12:00:01", "2026-01-15T12:00:00"},
        {"no valid day", {weekly(1, 0)}, "2026-01-01T00:00:00", ""},
        {"two", {daily(30), weekly(1, 64)}, "2026-01-02T00:00:00", "2026-01-03T12:00:00"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(nextText({{"Triggers", row.triggers}}, row.now), row.next) << row.what;
    EXPECT_EQ(nextText({{"Triggers", {daily(1)}}, {"Settings", {{"Enabled", false}}}}, "2026-01-01T00:00:00"), "");
}
