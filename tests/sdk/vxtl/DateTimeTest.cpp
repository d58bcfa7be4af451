#include "vxtl/datetime.h"
#include "support/thrown.h"
#include "vxtl/exception.h"

using namespace vx;

TEST(DateTime, namesTheFirstPartOutOfRange)
{
    const std::pair<DateTime::Parts, const wchar_t*> rows[] = {{{10000, 1, 1, 0, 0, 0, 0}, L"Year"},
        {{2024, 13, 1, 0, 0, 0, 0}, L"Month"}, {{1900, 2, 29, 0, 0, 0, 0}, L"Day"},
        {{2024, 1, 1, 24, 60, 0, 0}, L"Hour"}, {{2024, 1, 1, 23, 60, 60, 0}, L"Minute"},
        {{2024, 1, 1, 23, 59, 60, 1000}, L"Second"}, {{2024, 1, 1, 23, 59, 59, 1000}, L"Millisecond"}};
    for (const auto& [parts, refused] : rows) {
        const auto failure = support::thrown<BaseException>([&] { DateTime date(parts); });
        EXPECT_EQ(failure.reason(), std::wstring(L"Invalid value for ") + refused);
    }
}

TEST(DateTime, countsTicksFromYearOne)
{
    const std::pair<DateTime::Parts, std::uint64_t> rows[] = {{{1, 1, 1, 0, 0, 0, 0}, 0},
        {{1, 12, 31, 23, 59, 59, 999}, 315'359'999'990'000}, {{1970, 1, 1, 0, 0, 0, 0}, 621'355'968'000'000'000},
        {{2000, 2, 29, 0, 0, 0, 0}, 630'873'792'000'000'000}, {{2000, 12, 31, 0, 0, 0, 0}, 631'138'176'000'000'000},
        {{2024, 2, 29, 12, 34, 56, 789}, 638'448'068'967'890'000}, {{2024, 3, 1, 0, 0, 0, 0}, 638'448'480'000'000'000}};
    for (const auto& [parts, ticks] : rows) {
        EXPECT_EQ(DateTime(parts).ticks(), ticks) << parts.year;
        EXPECT_EQ(DateTime(DateTime(parts).parts()).ticks(), ticks) << parts.year;
    }
}
