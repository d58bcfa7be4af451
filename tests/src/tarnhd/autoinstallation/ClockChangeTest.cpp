#include "tarnhd/autoinstallation/schedule.h"

#include "common/utils/localtime.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <time.h>

namespace vx::tarn {
namespace {

// Whoever counts back from the present hour to midnight ends an hour beside it.
TEST(Schedule, countsFromMidnightOnDaysWithAClockChange)
{
    setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
    tzset();
    const struct {
        unsigned month, day, hour;
        std::int32_t chosen;
        unsigned startDay, startHour;
    } rows[] = {
        {3, 31, 1, 12, 31, 13},                          // before the clocks go forward
        {3, 31, 10, 12, 31, 13},                         // after
        {3, 31, 10, 0, 32, 1}, {10, 27, 10, 12, 27, 11}, // after they went back
    };
    for (const auto& row : rows) {
        const auto now = common::utils::fromLocalTime({2024, row.month, row.day, row.hour, 30, 0, 0});
        const auto start = common::utils::fromLocalTime({2024, row.month, row.startDay, row.startHour, 0, 0, 0});
        EXPECT_EQ(startBoundaryOf(*now * ticksPerSecond, row.chosen), *start * ticksPerSecond)
            << row.month << "-" << row.day << " " << row.hour;
    }
}

} // namespace
} // namespace vx::tarn
