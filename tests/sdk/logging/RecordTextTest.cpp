#include "banner.h"
#include "logging/startupheader.h"
#include "recordheader.h"

#include <bit>
#include <cstdint>
#include <regex>
#include <windows.h>

using namespace VxQrlLogging;
using namespace vx::logging::startup_header;

TEST(RecordHeader, hasOneWidthOrIsRefused)
{
    struct {
        RecordTime time;
        unsigned long process;
        unsigned long thread;
        const wchar_t* prefix;
        const wchar_t* text;
    } const rows[] = {
        {{2024, 1, 2, 3, 4, 5, 6}, 0x12, 0xab, L"*E", L"2024-01-02 03:04:05.006 [0012.00ab] *E: "},
        {{2024, 12, 31, 23, 59, 59, 999}, 0xffff, 0xffff, L" I", L"2024-12-31 23:59:59.999 [ffff.ffff]  I: "},
        {{2024, 1, 2, 3, 4, 5, 6}, 0x10000, 1, L"*E", L""},
        {{2024, 1, 2, 3, 4, 5, 6}, 1, 0xfffffffc, L"*E", L""},
        {{2024, 1, 2, 3, 4, 5, 6}, 1, 1, L"*", L""},
        {{2024, 1, 2, 3, 4, 5, 6}, 1, 1, L"long", L""},
    };
    for (const auto& row : rows) {
        wchar_t record[headerSize + 1] = {};
        EXPECT_EQ(formatHeader(record, row.time, row.process, row.thread, row.prefix), *row.text != 0);
        EXPECT_EQ(std::wstring(record), row.text);
    }
}

TEST(RecordTime, isTheSystemsTime)
{
    const auto ticks = [](const SYSTEMTIME& time) {
        FILETIME file;
        SystemTimeToFileTime(&time, &file);
        return std::bit_cast<std::uint64_t>(file);
    };
    for (const bool utc : {false, false, true}) {
        SYSTEMTIME before, after;
        utc ? GetSystemTime(&before) : GetLocalTime(&before);
        const RecordTime now = RecordTime::now(utc);
        utc ? GetSystemTime(&after) : GetLocalTime(&after);
        const SYSTEMTIME time = {WORD(now.year), WORD(now.month), before.wDayOfWeek, WORD(now.day), WORD(now.hour),
            WORD(now.minute), WORD(now.second), WORD(now.millisecond)};
        EXPECT_LE(ticks(before), ticks(time));
        EXPECT_LE(ticks(time), ticks(after));
    }
}

TEST(StartBanner, printsTheOffsetWithTheSignOnBothNumbers)
{
    struct {
        bool utc;
        int offset;
        const wchar_t* text;
    } const rows[] = {
        {false, 0, L"***  LOGGING STARTED  *** (UTC+0:00, session: 0x1)"},
        {false, 330, L"***  LOGGING STARTED  *** (UTC+5:30, session: 0x1)"},
        {false, -30, L"***  LOGGING STARTED  *** (UTC+0:-30, session: 0x1)"},
        {false, -210, L"***  LOGGING STARTED  *** (UTC-3:-30, session: 0x1)"},
        {false, 3599, L"***  LOGGING STARTED  *** (UTC+59:59, session: 0x1)"},
        {true, 120, L"***  LOGGING STARTED  *** (UTC+00:00, local:+2:00, session: 0x1)"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(startBanner(row.utc, row.offset, 1), row.text);
}

TEST(StartupHeader, describesProcessAndModule)
{
    const auto matches = [](const std::string& text, const char* pattern) {
        EXPECT_TRUE(std::regex_match(text, std::regex(pattern))) << text;
    };
    matches(getStartProcessInfo(), R"(Process file: .*logging-backend-tests\.exe, )"
                                   R"(Process Id: 0x[0-9A-F]{4,}, Parent Process Id: 0x[0-9A-F]{4,})");
    matches(getModuleFileInfo(""),
        R"(Module  file: .*logging-backend-tests\.exe, Version: <no version>, File size: [1-9]\d+, )"
        R"(Created: \d{4}-\d\d-\d\d \d\d:\d\d:\d\d, Modified: 20\d\d-\d\d-\d\d \d\d:\d\d:\d\d)");
    matches(getModuleFileInfo("1.2.3.4"), ".*, Version: 1.2.3.4, .*");
}
