#include "common/expbackofftimeout.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>

namespace vx::tarn::common {
namespace {

constexpr std::int64_t hour = 3'600'000;

TEST(ExpBackoffTimeout, doublesWithARandomPartUpToAnHour)
{
    ExpBackoffTimeout timeout(1000);
    EXPECT_EQ(timeout.next(), 0);
    for (const std::int64_t base : {1000, 2000, 4000, 8000, 16000, 32000, 64000, 128000, 256000, 512000, 1024000}) {
        const std::int64_t delay = timeout.next();
        EXPECT_GE(delay, base + 1);
        EXPECT_LE(delay, base + 10'000);
    }
    timeout.next();
    for (int i = 0; i < 70'000; ++i)
        ASSERT_EQ(timeout.next(), hour) << i;
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

TEST(ExpBackoffTimeout, capsBasesThatOverflow)
{
    ExpBackoffTimeout timeout(std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(timeout.next(), 0);
    EXPECT_EQ(timeout.next(), hour);
    EXPECT_EQ(timeout.next(), hour);
}

} // namespace
} // namespace vx::tarn::common
