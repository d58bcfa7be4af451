#include "common/utils/timetext.h"

#include "common/utils/localtime.h"

#include <cstdlib>
#include <ctime>
#include <cwchar>

using namespace vx::tarn::common::utils;

TEST(TimeText, writesLocalTimes)
{
#ifdef _WIN32
    // The C library takes this variable for the zone, but reads another form than the one that Wine is given.
    _putenv("TZ=");
    _tzset();
#endif
    for (const std::time_t time : {0x65E0, 1'709'210'096, 2'147'383'647}) {
        wchar_t expected[20] = L"";
        std::wcsftime(expected, 20, L"%Y-%m-%d %H:%M:%S", std::localtime(&time));
        EXPECT_EQ(timeToString(time), expected);
    }
    const struct {
        std::int64_t time;
        const wchar_t* year;
    } rows[] = {{1'709'210'096, L"2024-02-"}, {2'147'483'648 + 86'400, L"2038-01-"},
        {4'102'444'800 + 86'400, L"2100-01-"}, {-1, L""}, {INT64_MIN, L""}, {INT64_MAX, L""}};
    for (const auto& row : rows)
        EXPECT_EQ(timeToString(row.time).substr(0, 8), row.year) << row.time;
}

TEST(LocalTime, goesThereAndBackInEveryMonthAndBeyond2038)
{
    constexpr std::int64_t day = 86'400;
    for (std::int64_t time = 1'709'210'096; time < 2'300'000'000; time += 29 * day + 3'601) {
        const auto parts = toLocalTime(time);
        ASSERT_TRUE(parts) << time;
        EXPECT_EQ(fromLocalTime(*parts), time);
    }
}
