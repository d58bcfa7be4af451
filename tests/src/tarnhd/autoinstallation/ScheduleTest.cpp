#include "tarnhd/autoinstallation/schedule.h"

#include "common/utils/localtime.h"
#include "support/logcapture.h"

#include <gtest/gtest.h>

namespace vx::tarn {
namespace {

using common::utils::fromLocalTime;

TEST(Schedule, startsAtTheNextMomentOfTheHour)
{
    const struct {
        unsigned month, day, hour, minute, second;
        Ticks more; ///< than the whole second
        std::int32_t chosen;
        unsigned startMonth, startDay, startHour;
    } rows[] = {
        {2, 10, 11, 59, 59, 9'999'999, 12, 2, 10, 12},
        {2, 10, 12, 0, 0, 0, 12, 2, 11, 12},
        {2, 10, 0, 0, 0, 0, 23, 2, 10, 23},
        {2, 29, 23, 59, 59, 0, 5, 3, 1, 5},
        {2, 10, 23, 59, 59, 0, 25, 2, 11, 1},
        {2, 10, 23, 30, 0, 0, -1, 2, 10, 23},
    };
    for (const auto& row : rows) {
        const auto now = fromLocalTime({2024, row.month, row.day, row.hour, row.minute, row.second, 0});
        const auto start = fromLocalTime({2024, row.startMonth, row.startDay, row.startHour, 0, 0, 0});
        ASSERT_TRUE(now && start);
        EXPECT_EQ(startBoundaryOf(*now * ticksPerSecond + row.more, row.chosen), *start * ticksPerSecond)
            << row.day << ". " << row.hour << ":" << row.minute << ", " << row.chosen;
    }
    constexpr Ticks now = 1'709'210'096 * ticksPerSecond;
    EXPECT_EQ(startBoundaryOf(now, INT32_MAX), INT64_MAX);
    EXPECT_LT(startBoundaryOf(now, INT32_MIN), now);
    EXPECT_THROW(startBoundaryOf(-10 * ticksPerSecond, 12), std::exception);
}

TEST(Schedule, namesSeveritiesAndDays)
{
    const support::LogCapture log;
    std::wstring severities;
    for (int mode = 0; mode < 5; ++mode)
        severities += severityOf(static_cast<ModeItem>(mode)) + L' ';
    EXPECT_EQ(severities, L" all critical important  ");
    EXPECT_TRUE(log.has(2, "Severity for the mode 4 not found. Fallback to the empty value")) << log.text();
    std::vector<std::int32_t> days;
    for (int frequency = 0; frequency < 9; ++frequency)
        days.push_back(dayOfWeekOf(static_cast<FrequencyItem>(frequency)));
    EXPECT_EQ(days, (std::vector<std::int32_t>{0, 2, 4, 8, 16, 32, 64, 1, 0}));
    EXPECT_TRUE(log.has(2, "Day of week for the frequency 8 not found. Fallback to the empty value")) << log.text();
    EXPECT_EQ(log.lines().size(), 2u) << log.text();
}

} // namespace
} // namespace vx::tarn
