#include "banner.h"
#include "logging/startupheader.h"
#include "recordheader.h"

#include <regex>
#include <windows.h>

using namespace VxQrlLogging;
using namespace vx::logging::startup_header;

TEST(RecordHeader, hasOneWidthOrIsRefused)
{
    const RecordTime early = {2024, 1, 2, 3, 4, 5, 6}, late = {2024, 12, 31, 23, 59, 59, 999};
    const std::tuple<RecordTime, unsigned long, unsigned long, const wchar_t*, const wchar_t*> rows[] = {
        {early, 0x12, 0xab, L"*E", L"2024-01-02 03:04:05.006 [0012.00ab] *E: "},
        {late, 0xffff, 0xffff, L" I", L"2024-12-31 23:59:59.999 [ffff.ffff]  I: "},
        {early, 0x10000, 1, L"*E", L""},
        {early, 1, 0xfffffffc, L"*E", L""},
        {early, 1, 1, L"*", L""},
        {early, 1, 1, L"long", L""},
    };
    for (const auto& [time, process, thread, prefix, text] : rows) {
        wchar_t record[headerSize + 1] = {};
        EXPECT_EQ(formatHeader(record, time, process, thread, prefix), *text != 0);
        EXPECT_EQ(std::wstring(record), text);
    }
}

TEST(StartBanner, printsTheOffsetWithTheSignOnBothNumbers)
{
    const std::tuple<bool, int, std::wstring> rows[] = {{false, 0, L"UTC+0:00"}, {false, 330, L"UTC+5:30"},
        {false, -30, L"UTC+0:-30"}, {false, -210, L"UTC-3:-30"}, {false, 3599, L"UTC+59:59"},
        {true, 120, L"UTC+00:00, local:+2:00"}};
    for (const auto& [utc, offset, text] : rows)
        EXPECT_EQ(startBanner(utc, offset, 1), L"***  LOGGING STARTED  *** (" + text + L", session: 0x1)");
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
    // The system's own, with the build in the third place.
    matches(moduleVersionText(GetModuleHandleW(L"kernel32.dll")), R"((6|10)\.\d\.\d{4,5}\.\d+)");
}
