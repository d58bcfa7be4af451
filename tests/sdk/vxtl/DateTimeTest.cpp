#include "vxtl/datetime.h"
#include "vxtl/exception.h"

namespace vx {

static bool operator==(const DateTime::Parts& a, const DateTime::Parts& b)
{
    return a.year == b.year && a.month == b.month && a.day == b.day && a.hour == b.hour && a.minute == b.minute &&
           a.second == b.second && a.millisecond == b.millisecond;
}

namespace {

std::wstring refusal(const DateTime::Parts& parts)
{
    try {
        DateTime date(parts);
    } catch (const BaseException& e) {
        EXPECT_THAT(e.what(), testing::HasSubstr("Function: vx::DateTime::DateTime,"));
        return e.reason();
    }
    return {};
}

TEST(DateTime, namesTheFirstPartOutOfRange)
{
    struct {
        DateTime::Parts parts;
        const wchar_t* refused;
    } const rows[] = {
        {{0, 13, 1, 0, 0, 0, 0}, L"Invalid value for Year"},
        {{10000, 1, 1, 0, 0, 0, 0}, L"Invalid value for Year"},
        {{2024, 0, 0, 0, 0, 0, 0}, L"Invalid value for Month"},
        {{2024, 13, 1, 0, 0, 0, 0}, L"Invalid value for Month"},
        {{2024, 2, 29, 0, 0, 0, 0}, L""},
        {{2023, 2, 29, 0, 0, 0, 0}, L"Invalid value for Day"},
        {{1900, 2, 29, 0, 0, 0, 0}, L"Invalid value for Day"},
        {{2000, 2, 29, 0, 0, 0, 0}, L""},
        {{2024, 4, 31, 24, 0, 0, 0}, L"Invalid value for Day"},
        {{2024, 1, 1, 24, 60, 0, 0}, L"Invalid value for Hour"},
        {{2024, 1, 1, 23, 60, 60, 0}, L"Invalid value for Minute"},
        {{2024, 1, 1, 23, 59, 60, 1000}, L"Invalid value for Second"},
        {{2024, 1, 1, 23, 59, 59, 1000}, L"Invalid value for Millisecond"},
        {{2024, 1, 1, 23, 59, 59, 999}, L""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(refusal(row.parts), row.refused) << row.parts.year << '-' << row.parts.month << '-' << row.parts.day;
}

TEST(DateTime, countsTicksFromYearOne)
{
    struct {
        DateTime::Parts parts;
        std::uint64_t ticks;
    } const rows[] = {
        {{1, 1, 1, 0, 0, 0, 0}, 0},
        {{1, 12, 31, 23, 59, 59, 999}, 315'359'999'990'000},
        {{1601, 1, 1, 0, 0, 0, 0}, 504'911'232'000'000'000},
        {{1970, 1, 1, 0, 0, 0, 0}, 621'355'968'000'000'000},
        {{2000, 12, 31, 0, 0, 0, 0}, 631'138'176'000'000'000},
        {{2024, 2, 29, 12, 34, 56, 789}, 638'448'068'967'890'000},
        {{2024, 3, 1, 0, 0, 0, 0}, 638'448'480'000'000'000},
    };
    for (const auto& row : rows) {
        const DateTime date(row.parts);
        EXPECT_EQ(date.ticks(), row.ticks) << row.parts.year;
        EXPECT_EQ(date.parts(), row.parts) << row.parts.year;
    }
    EXPECT_EQ(DateTime::largest().parts(), (DateTime::Parts{9999, 12, 31, 23, 59, 59, 99}));
}

TEST(DateTime, comesFromUnixTime)
{
    EXPECT_TRUE(DateTime::fromTime(-1).isNever());
    EXPECT_EQ(DateTime::fromTime(-2).parts(), (DateTime::Parts{1969, 12, 31, 23, 59, 58, 0}));
    EXPECT_EQ(DateTime::fromTime(1'709'210'096).parts(), (DateTime::Parts{2024, 2, 29, 12, 34, 56, 0}));
    EXPECT_EQ(DateTime::fromTime(0).kind(), DateTime::Kind::System);
}

} // namespace
} // namespace vx
