#include "support/thrown.h"
#include "vxtl/datetime.h"
#include "vxtl/win32exception.h"

#include <windows.h>

#include <cstdlib>

using namespace vx;

TEST(DateTimeUtc, convertsLocalTimesOnly)
{
    const DateTime::Parts noon{2024, 6, 15, 12, 0, 0, 0};
    EXPECT_EQ(DateTime(noon, DateTime::Kind::System).toUtc().ticks(), DateTime(noon).ticks());
    FILETIME local, utc;
    const SYSTEMTIME systemNoon = {2024, 6, 6, 15, 12, 0, 0, 0};
    ASSERT_TRUE(SystemTimeToFileTime(&systemNoon, &local) && LocalFileTimeToFileTime(&local, &utc));
    const auto ticks = [](const FILETIME& t) {
        return static_cast<std::int64_t>(t.dwHighDateTime) << 32 | t.dwLowDateTime;
    };
    const DateTime converted = DateTime(noon, DateTime::Kind::Local).toUtc();
    EXPECT_EQ(static_cast<std::int64_t>(converted.ticks() - DateTime(noon).ticks()), ticks(utc) - ticks(local));
    EXPECT_EQ(converted.kind(), DateTime::Kind::Utc);
    EXPECT_THROW(DateTime({1600, 12, 31, 0, 0, 0, 0}, DateTime::Kind::Local).toUtc(), Win32Exception);
}

TEST(DateTimeUtc, givesTheSpanBetweenTwoDates)
{
    const DateTime earlier({2024, 2, 28, 0, 0, 0, 0});
    const DateTime later({2024, 3, 1, 0, 0, 0, 1});
    EXPECT_EQ(later - earlier, 2 * 864'000'000'000 + 10'000);
    EXPECT_EQ(earlier - later, -(2 * 864'000'000'000 + 10'000));
    for (const auto& [a, b] : {std::pair{DateTime::never(), later}, std::pair{later, DateTime::never()}}) {
        const auto failure = support::thrown<BaseException>([&] { a - b; });
        EXPECT_EQ(failure.reason(), L"Requested span from/to NEVER.");
        EXPECT_THAT(failure.what(), testing::HasSubstr("Function: vx::DateTime::operator -,"));
    }
}

TEST(DateTimeUtc, nowIsTheSystemsTime)
{
    const DateTime now = DateTime::now();
    EXPECT_EQ(now.kind(), DateTime::Kind::System);
    EXPECT_LT(std::llabs(DateTime::fromTime(std::time(nullptr)) - now), 60 * 10'000'000LL);
}
