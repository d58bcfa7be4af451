#include "logging/startupheader.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <regex>
#include <vector>
#include <windows.h>

#include <tlhelp32.h>

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

TEST(StartupHeader, tellsTheParentThatTheSystemKnows)
{
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    for (BOOL more = Process32FirstW(snapshot, &entry); more && entry.th32ProcessID != GetCurrentProcessId();)
        more = Process32NextW(snapshot, &entry);
    CloseHandle(snapshot);
    char parent[16];
    std::snprintf(parent, sizeof parent, "0x%04lX", entry.th32ParentProcessID);
    EXPECT_TRUE(getStartProcessInfo().ends_with(std::string("Parent Process Id: ") + parent)) << parent;
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

} // namespace
} // namespace vx::logging::startup_header
