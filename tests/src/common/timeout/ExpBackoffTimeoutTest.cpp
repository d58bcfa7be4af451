#include "common/timeout/expbackofftimeout.h"

#include <gtest/gtest.h>

#include <set>

using vx::tarn::common::ExpBackoffTimeout;

TEST(ExpBackoffTimeout, doublesWithARandomPartUpToAnHour)
{
    constexpr std::int64_t hour = 3'600'000;
    ExpBackoffTimeout timeout(1000);
    EXPECT_EQ(timeout.next(), 0);
    for (std::int64_t base = 1000; base <= 1'024'000; base *= 2) {
        const std::int64_t delay = timeout.next();
        EXPECT_GE(delay, base + 1);
        EXPECT_LE(delay, base + 10'000);
    }
    timeout.next();
    for (int i = 0; i < 70'000; ++i)
        ASSERT_EQ(timeout.next(), hour) << i;
    ExpBackoffTimeout overflowing(UINT64_MAX);
    overflowing.next();
    EXPECT_EQ(overflowing.next(), hour);
}

TEST(ExpBackoffTimeout, spreadsObjectsWithTheSameBase)
{
    std::set<std::int64_t> delays;
    for (int i = 0; i < 20; ++i) {
        ExpBackoffTimeout timeout(0);
        timeout.next();
        delays.insert(timeout.next());
    }
    EXPECT_GT(delays.size(), 10u);
    EXPECT_GE(*delays.begin(), 1);
    EXPECT_LE(*delays.rbegin(), 10'000);
}
