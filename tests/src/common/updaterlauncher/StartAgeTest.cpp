#include "common/updaterlauncher/startage.h"

TEST(StartAge, isExactForAllIntervals)
{
    constexpr std::int64_t now = 17'092'100'960'000'000;
    struct {
        const char* trace;
        std::int64_t lastStart, seconds;
        bool older;
    } const rows[] = {
        {"never started", 0, 3600, true},
        {"due now", now - 600'000'000, 60, false},
        {"due a tick ago", now - 600'000'001, 60, true},
        {"clock set back", now + 1, 0, false},
        {"negative interval", now, -1, true},
        {"ticks overflow", 0, INT64_MAX / 10'000'000 + 1, false},
        {"sum overflows", INT64_MAX - 1, 1, false},
        {"smallest interval", 0, INT64_MIN, true},
        {"sum falls below", INT64_MIN + 1, -1, true},
    };
    for (const auto& row : rows)
        EXPECT_EQ(vx::tarn::common::isStartOlderThan(row.lastStart, row.seconds, now), row.older) << row.trace;
}
