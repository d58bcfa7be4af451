#include "logging/details/banner.h"
#include "logging/details/recordheader.h"

#include <gtest/gtest.h>

namespace VxQrlLogging {
namespace {

TEST(RecordHeader, hasOneWidthOrIsRefused)
{
    struct Case {
        RecordTime time;
        unsigned long process;
        unsigned long thread;
        const wchar_t* prefix;
        const wchar_t* text; ///< null when refused
    };
    const Case cases[] = {
        {{2024, 1, 2, 3, 4, 5, 6}, 0x12, 0xab, L"*E", L"2024-01-02 03:04:05.006 [0012.00ab] *E: "},
        {{2024, 12, 31, 23, 59, 59, 999}, 0xffff, 0xffff, L" I", L"2024-12-31 23:59:59.999 [ffff.ffff]  I: "},
        {{2024, 1, 2, 3, 4, 5, 6}, 0x10000, 1, L"*E", nullptr},
        {{2024, 1, 2, 3, 4, 5, 6}, 1, 0xfffffffc, L"*E", nullptr},
        {{2024, 1, 2, 3, 4, 5, 6}, 1, 1, L"*", nullptr},
        {{2024, 1, 2, 3, 4, 5, 6}, 1, 1, L"long", nullptr},
    };
    for (const Case& c : cases) {
        wchar_t record[headerSize + 1] = {};
        EXPECT_EQ(formatHeader(record, c.time, c.process, c.thread, c.prefix), c.text != nullptr);
        EXPECT_EQ(std::wstring(record), c.text ? c.text : L"");
    }
}

TEST(StartBanner, printsTheOffsetWithTheSignOnBothNumbers)
{
    struct Case {
        bool utc;
        int offset;
        const wchar_t* text;
    };
    const Case cases[] = {
        {false, 0, L"***  LOGGING STARTED  *** (UTC+0:00, session: 0x1)"},
        {false, 330, L"***  LOGGING STARTED  *** (UTC+5:30, session: 0x1)"},
        {false, -30, L"***  LOGGING STARTED  *** (UTC+0:-30, session: 0x1)"},
        {false, -210, L"***  LOGGING STARTED  *** (UTC-3:-30, session: 0x1)"},
        {false, 3599, L"***  LOGGING STARTED  *** (UTC+59:59, session: 0x1)"},
        {true, 120, L"***  LOGGING STARTED  *** (UTC+00:00, local:+2:00, session: 0x1)"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(startBanner(c.utc, c.offset, 1), c.text);
}

} // namespace
} // namespace VxQrlLogging
