#pragma once

#include <gmock/gmock.h>
#include <windows.h>

#include <map>
#include <string>

namespace support {

/// Runs a function of this test program, one of those given to mainWithChildren, in a process of its own.
/// Ends the process if it still runs at destruction.
class ChildTest {
public:
    ChildTest(const std::wstring& function, const std::wstring& argument)
    {
        wchar_t program[MAX_PATH];
        GetModuleFileNameW(nullptr, program, MAX_PATH);
        std::wstring command = L'"' + std::wstring(program) + L"\" --child " + function;
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

    /// What the function gave; 98 when it does not end within 60 seconds.
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

/// A test program's main: runs its tests or, when its command line ends with "--child NAME", the function of that name.
inline int mainWithChildren(int argc, char** argv, const std::map<std::string, int (*)()>& children)
{
    if (argc >= 3 && std::string(argv[argc - 2]) == "--child")
        return children.at(argv[argc - 1])();
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}

/// A name that no other process uses.
inline std::wstring uniqueName(const std::wstring& stem)
{
    return stem + L"-" + std::to_wstring(GetCurrentProcessId());
}

} // namespace support
