#include "support/thrown.h"
#include "vxtl/clock.h"
#include "vxtl/datetime.h"
#include "vxtl/win32exception.h"

#include <cstdlib>

using namespace vx;

TEST(DateTimeUtc, convertsLocalTimesNotBefore1601AndGivesTheSpanBetweenTwoDates)
{
    EXPECT_THROW(DateTime({1600, 12, 31, 0, 0, 0, 0}, DateTime::Kind::Local).toUtc(), Win32Exception);
    EXPECT_EQ(DateTime({2024, 6, 15, 12, 0, 0, 0}, DateTime::Kind::Local).toUtc().kind(), DateTime::Kind::Utc);
    const DateTime earlier({2024, 2, 28, 0, 0, 0, 0});
    const DateTime later({2024, 3, 1, 0, 0, 0, 1});
    EXPECT_EQ(later - earlier, 2 * 864'000'000'000 + 10'000);
    EXPECT_EQ(earlier - later, -(2 * 864'000'000'000 + 10'000));
    EXPECT_EQ(support::thrown<BaseException>([&] { later - DateTime::fromTime(-1); }).reason(),
        L"Requested span from/to NEVER.");
    EXPECT_LT(std::llabs(DateTime::fromTime(systemTicks() / ticksPerSecond) - DateTime::now()), 60 * ticksPerSecond);
}
