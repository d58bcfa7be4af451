#include "logging/details/banner.h"
#include "logging/details/recordheader.h"
#include "logging/startupheader.h"

#include <regex>
#include <windows.h>

using namespace VxQrlLogging;
using namespace vx::logging::startup_header;

TEST(RecordHeader, hasOneWidthOrIsRefused)
{
    const std::tuple<unsigned long, unsigned long, const wchar_t*, std::wstring> rows[] = {
        {0x12, 0xab, L"*E", L"2024-01-02 03:04:05.006 [0012.00ab] *E: "},
        {0xffff, 0xffff, L" I", L"2024-01-02 03:04:05.006 [ffff.ffff]  I: "},
        {0x10000, 1, L"*E", L""},
        {1, 0xfffffffc, L"*E", L""},
        {1, 1, L"*", L""},
        {1, 1, L"long", L""},
    };
    for (const auto& [process, thread, prefix, text] : rows) {
        wchar_t record[headerSize + 1] = {};
        EXPECT_EQ(formatHeader(record, {2024, 1, 2, 3, 4, 5, 6}, process, thread, prefix), !text.empty());
        EXPECT_EQ(std::wstring(record), text);
    }
}

TEST(StartBanner, printsTheOffsetWithTheSignOnBothNumbers)
{
    EXPECT_EQ(startBanner(false, 330, 1), L"***  LOGGING STARTED  *** (UTC+5:30, session: 0x1)");
    EXPECT_EQ(startBanner(false, -30, 1), L"***  LOGGING STARTED  *** (UTC+0:-30, session: 0x1)");
    EXPECT_EQ(startBanner(false, -210, 26), L"***  LOGGING STARTED  *** (UTC-3:-30, session: 0x1a)");
    EXPECT_EQ(startBanner(true, 120, 1), L"***  LOGGING STARTED  *** (UTC+00:00, local:+2:00, session: 0x1)");
}

TEST(StartupHeader, describesProcessAndModule)
{
    const auto matches = [](const std::string& text, const char* pattern) {
        EXPECT_TRUE(std::regex_match(text, std::regex(pattern))) << text;
    };
    matches(getStartProcessInfo(), R"(Process file: .*logging-backend-tests\.exe, )"
                                   R"(Process Id: 0x[0-9A-F]{4,}, Parent Process Id: 0x[0-9A-F]{4,})");
    matches(getModuleFileInfo(moduleVersionText(GetModuleHandleW(nullptr))),
        R"(Module  file: .*logging-backend-tests\.exe, Version: 1\.2\.3\.4, File size: [1-9]\d+, )"
        R"(Created: \d{4}-\d\d-\d\d \d\d:\d\d:\d\d, Modified: 20\d\d-\d\d-\d\d \d\d:\d\d:\d\d)");
    matches(getModuleFileInfo(""), ".*, Version: <no version>, .*");
}
