#include "common/utils/timetext.h"

#include "common/utils/localtime.h"

#include <regex>

using namespace vx::tarn::common::utils;

// In the zone of this computer, whichever that is: zones differ by quarters of an hour.
TEST(TimeText, writesLocalTimes)
{
    const std::pair<std::int64_t, const wchar_t*> rows[] = {
        {1'709'210'096, LR"(2024-0(2-28|2-29|3-01) \d\d:(34|49|04|19):56)"},
        {2'147'483'648 + 86'400, LR"(2038-01-(19|20|21) \d\d:(14|29|44|59):08)"},
        {4'102'444'800 + 86'400, LR"(2100-01-0[123] \d\d:(00|15|30|45):00)"},
        {-1, L""},
        {INT64_MIN, L""},
        {INT64_MAX, L""},
    };
    for (const auto& [time, pattern] : rows)
        EXPECT_TRUE(std::regex_match(timeToString(time), std::wregex(pattern))) << time;
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
