#pragma once

#include <windows.h>

#include <string>

namespace support {

/// A test of this program that runs in a process of its own: one whose name begins with DISABLED_. Passes
/// text through the variable TARNHD_TEST_ARGUMENT. Ends the process if it still runs at destruction.
class ChildTest {
public:
    ChildTest(const std::wstring& test, const std::wstring& argument)
    {
        wchar_t program[MAX_PATH];
        GetModuleFileNameW(nullptr, program, MAX_PATH);
        std::wstring command =
            L'"' + std::wstring(program) + L"\" --gtest_also_run_disabled_tests --gtest_filter=" + test;
        SetEnvironmentVariableW(L"TARNHD_TEST_ARGUMENT", argument.c_str());
        STARTUPINFOW startup = {};
        startup.cb = sizeof(startup);
        CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &m_information);
    }
    ~ChildTest()
    {
        TerminateProcess(m_information.hProcess, 99);
        CloseHandle(m_information.hProcess);
        CloseHandle(m_information.hThread);
    }
    ChildTest(const ChildTest&) = delete;
    ChildTest& operator=(const ChildTest&) = delete;

    /// The child's result, 0 for success; 98 when it does not end within 60 seconds.
    unsigned long wait() const
    {
        DWORD code = 98;
        if (WaitForSingleObject(m_information.hProcess, 60'000) == WAIT_OBJECT_0)
            GetExitCodeProcess(m_information.hProcess, &code);
        return code;
    }

    /// In the child: the text.
    static std::wstring argument()
    {
        wchar_t text[512] = L"";
        GetEnvironmentVariableW(L"TARNHD_TEST_ARGUMENT", text, 512);
        return text;
    }

private:
    PROCESS_INFORMATION m_information = {};
};

/// A name that no other process uses.
inline std::wstring uniqueName(const std::wstring& stem)
{
    return stem + L"-" + std::to_wstring(GetCurrentProcessId());
}

} // namespace support
