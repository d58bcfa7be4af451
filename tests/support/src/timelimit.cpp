// Where TARNHD_TEST_SECONDS says how long a test program may take, one that takes longer ends with the exit code 124,
// and with it what it has started.

#include <cwchar>
#include <windows.h>

namespace {

constexpr UINT timeIsOver = 124;

// Without the C library, whose locks the thread that hangs may have.
void CALLBACK endProcess(void*, BOOLEAN)
{
    constexpr char text[] = "the time for this test is over\r\n";
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), text, sizeof text - 1, &written, nullptr);
    TerminateProcess(GetCurrentProcess(), timeIsOver);
}

void takeChildrenAlong()
{
    // Never closed: that the process's end does.
    const HANDLE job = CreateJobObjectW(nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
    AssignProcessToJobObject(job, GetCurrentProcess());
}

const bool isLimited = [] {
    wchar_t seconds[16];
    const DWORD length = GetEnvironmentVariableW(L"TARNHD_TEST_SECONDS", seconds, ARRAYSIZE(seconds));
    if (length == 0 || length >= ARRAYSIZE(seconds))
        return false;
    takeChildrenAlong();
    HANDLE timer = nullptr;
    return CreateTimerQueueTimer(&timer, nullptr, endProcess, nullptr, std::wcstoul(seconds, nullptr, 10) * 1000, 0,
               WT_EXECUTEINTIMERTHREAD) != FALSE;
}();

} // namespace
