#include "common/startage.h"

#include <gtest/gtest.h>

#include <limits>

namespace vx::tarn::common {
namespace {

TEST(StartAge, isExactForAllIntervals)
{
    constexpr auto largest = std::numeric_limits<std::int64_t>::max();
    constexpr auto smallest = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t now = 17'092'100'960'000'000;
    struct {
        const char* trace;
        std::int64_t lastStart;
        std::int64_t seconds;
        bool older;
    } const rows[] = {
        {"never started", 0, 3600, true},
        {"due now", now - 600'000'000, 60, false},
        {"due a tick ago", now - 600'000'001, 60, true},
        {"just started", now, 0, false},
        {"clock set back", now + 1, 0, false},
        {"negative interval", now, -1, true},
        {"endless interval", 0, largest, false},
        {"ticks overflow", 0, largest / 10'000'000 + 1, false},
        {"sum overflows", largest - 1, 1, false},
        {"smallest interval", 0, smallest, true},
        {"sum falls below", smallest + 1, -1, true},
    };
    for (const auto& row : rows)
        EXPECT_EQ(isStartOlderThan(row.lastStart, row.seconds, now), row.older) << row.trace;
}

} // namespace
} // namespace vx::tarn::common
