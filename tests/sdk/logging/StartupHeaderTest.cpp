#include "logging/startupheader.h"

#include <regex>
#include <windows.h>

using namespace vx::logging::startup_header;

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

TEST(StartupHeader, readsTheVersionOfAModuleThatHasOne)
{
    const HMODULE system = GetModuleHandleW(L"kernel32.dll");
    wchar_t file[MAX_PATH];
    GetModuleFileNameW(system, file, MAX_PATH);
    std::vector<char> block(GetFileVersionInfoSizeW(file, nullptr));
    void* found = nullptr;
    UINT size = 0;
    ASSERT_TRUE(GetFileVersionInfoW(file, 0, static_cast<DWORD>(block.size()), block.data()));
    ASSERT_TRUE(VerQueryValueW(block.data(), L"\\", &found, &size));
    const auto& info = *static_cast<const VS_FIXEDFILEINFO*>(found);
    const std::string expected =
        std::to_string(HIWORD(info.dwFileVersionMS)) + '.' + std::to_string(LOWORD(info.dwFileVersionMS)) + '.' +
        std::to_string(HIWORD(info.dwFileVersionLS)) + '.' + std::to_string(LOWORD(info.dwFileVersionLS));
    EXPECT_EQ(moduleVersionText(system), expected);
    EXPECT_EQ(moduleVersionText(GetModuleHandleW(nullptr)), "");
}
