#include "common/timetext.h"

#include "common/localtime.h"
#include "vxtl/datetime.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <limits>

namespace vx::tarn::common::utils {
namespace {

TEST(TimeText, writesLocalTimes)
{
    for (const std::int64_t time : {std::int64_t{0x65E0}, std::int64_t{1'709'210'096}, std::int64_t{4'102'444'800}}) {
        const auto local = toLocalTime(time);
        ASSERT_TRUE(local);
        wchar_t expected[20] = L"";
        std::wcsftime(expected, 20, L"%Y-%m-%d %H:%M:%S", &*local);
        EXPECT_EQ(timeToString(time), expected);
    }
    EXPECT_EQ(timeToString(1'709'210'096).substr(0, 8), L"2024-02-");
    EXPECT_EQ(timeToString(std::numeric_limits<std::int64_t>::max()), L"");
    EXPECT_EQ(timeToString(-1), L"");
}

TEST(TimeText, writesDatesWithTheTimeInOnePiece)
{
    EXPECT_EQ(dateTimeToString(DateTime({2024, 2, 3, 4, 5, 6, 7})), L"2024-02-03 040506007");
    EXPECT_EQ(dateTimeToString(DateTime({1, 1, 1, 0, 0, 0, 0})), L"0001-01-01 000000000");
    EXPECT_EQ(dateTimeToString(DateTime::largest()), L"9999-12-31 235959099");
}

} // namespace
} // namespace vx::tarn::common::utils
