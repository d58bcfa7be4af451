#include "common/timeout/expbackofftimeout.h"

#include <set>

using vx::tarn::common::ExpBackoffTimeout;

TEST(ExpBackoffTimeout, doublesUpToAnHourWithARandomPartOfEachObjectsOwn)
{
    constexpr std::int64_t hour = 3'600'000;
    std::set<std::int64_t> firstParts, parts;
    for (int object = 0; object < 20; ++object) {
        ExpBackoffTimeout timeout(1000);
        EXPECT_EQ(timeout.next(), 0);
        firstParts.insert(timeout.next() - 1000);
        for (std::int64_t base = 2000; base <= 1'024'000; base *= 2)
            parts.insert(timeout.next() - base);
    }
    EXPECT_GT(firstParts.size(), 10u);
    EXPECT_GE(*parts.begin(), 1);
    EXPECT_LE(*parts.rbegin(), 10'000);
    ExpBackoffTimeout endless(1000), overflowing(UINT64_MAX);
    for (int i = 0; i < 70'000; ++i)
        ASSERT_TRUE(endless.next() == hour || i < 13) << i;
    overflowing.next();
    EXPECT_EQ(overflowing.next(), hour);
}
