#include "common/timetext.h"
#include "common/localtime.h"

#include <gtest/gtest.h>

#include <cwchar>

using namespace vx::tarn::common::utils;

TEST(TimeText, writesLocalTimes)
{
    for (const std::int64_t time : {0x65E0LL, 1'709'210'096LL, 4'102'444'800LL}) {
        const auto local = toLocalTime(time);
        ASSERT_TRUE(local);
        wchar_t expected[20] = L"";
        std::wcsftime(expected, 20, L"%Y-%m-%d %H:%M:%S", &*local);
        EXPECT_EQ(timeToString(time), expected);
    }
    EXPECT_EQ(timeToString(1'709'210'096).substr(0, 8), L"2024-02-");
    EXPECT_EQ(timeToString(INT64_MAX), L"");
    EXPECT_EQ(timeToString(-1), L"");
}
