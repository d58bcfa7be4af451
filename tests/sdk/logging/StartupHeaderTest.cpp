#include "logging/startupheader.h"

#include <gtest/gtest.h>
#include <regex>
#include <windows.h>

namespace vx::logging::startup_header {
namespace {

TEST(StartupHeader, describesProcessAndModule)
{
    const std::string process = getStartProcessInfo();
    EXPECT_TRUE(
        std::regex_match(process, std::regex(R"(Process file: .*logging-backend-tests\.exe, )"
                                             R"(Process Id: 0x[0-9A-F]{4,}, Parent Process Id: 0x[0-9A-F]{4,})")))
        << process;
    const std::string module = getModuleFileInfo("");
    EXPECT_TRUE(std::regex_match(
        module, std::regex(R"(Module  file: .*logging-backend-tests\.exe, Version: <no version>, File size: [1-9]\d+, )"
                           R"(Created: \d{4}-\d\d-\d\d \d\d:\d\d:\d\d, Modified: 20\d\d-\d\d-\d\d \d\d:\d\d:\d\d)")))
        << module;
    EXPECT_NE(getModuleFileInfo("1.2.3.4").find(", Version: 1.2.3.4, "), std::string::npos);
}

TEST(StartupHeader, readsTheVersionOfAFileThatHasOne)
{
    wchar_t system[MAX_PATH];
    GetSystemDirectoryW(system, MAX_PATH);
    const std::string version = fileVersionText(std::wstring(system) + L"\\kernel32.dll");
    EXPECT_TRUE(std::regex_match(version, std::regex(R"([1-9]\d*\.\d+\.\d+\.\d+)"))) << version;
    EXPECT_EQ(fileVersionText(moduleFile()), "");
    EXPECT_EQ(fileVersionText(L"C:\\no\\such\\file.dll"), "");
}

} // namespace
} // namespace vx::logging::startup_header
