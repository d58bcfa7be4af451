#include "host/hostinstance.h"

#include "host/exitcode.h"
#include "vxtl/str.h"

#include <cstdlib>
#include <windows.h>

namespace devhost::host {

namespace {

std::wstring objectName(const std::wstring& instance, const wchar_t* what)
{
    return L"Global\\tarnhd." + instance + what;
}

} // namespace

InstanceLock::InstanceLock(const std::wstring& instance)
    : m_mutex(CreateMutexW(nullptr, FALSE, objectName(instance, L".host").c_str()))
{
    if (m_mutex && GetLastError() != ERROR_ALREADY_EXISTS)
        return;
    if (m_mutex)
        CloseHandle(m_mutex);
    throw CommandError(
        ExitCode::AlreadyRunning, "a host of the instance \"" + vx::str::toUtf8(instance) + "\" is already running");
}

InstanceLock::~InstanceLock()
{
    CloseHandle(m_mutex);
}

ReadySignal::ReadySignal(const std::wstring& instance)
    : m_event(CreateEventW(nullptr, TRUE, FALSE, objectName(instance, L".ready").c_str()))
{}

ReadySignal::~ReadySignal()
{
    CloseHandle(m_event);
}

void ReadySignal::set()
{
    SetEvent(m_event);
}

void ReadySignal::reset()
{
    ResetEvent(m_event);
}

bool ReadySignal::wait(unsigned long timeoutMs) const
{
    return WaitForSingleObject(m_event, timeoutMs) == WAIT_OBJECT_0;
}

void exportInstance(const std::wstring& instance)
{
    // Whichever way the library reads its environment.
    _wputenv_s(L"TARNHD_INSTANCE", instance.c_str());
    SetEnvironmentVariableW(L"TARNHD_INSTANCE", instance.c_str());
}

} // namespace devhost::host
