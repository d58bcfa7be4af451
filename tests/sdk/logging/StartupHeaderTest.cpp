#include "logging/startupheader.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <vector>
#include <windows.h>

#include <tlhelp32.h>

namespace vx::logging::startup_header {
namespace {

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
