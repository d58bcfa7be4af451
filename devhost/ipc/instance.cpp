#include "ipc/instance.h"

#include "vxtl/win32exception.h"

#include <cstdlib>
#include <windows.h>

namespace devhost::ipc {

std::wstring instanceFromEnvironment()
{
    wchar_t buffer[256];
    const DWORD length = GetEnvironmentVariableW(L"TARNHD_INSTANCE", buffer, 256);
    return length > 0 && length < 256 ? std::wstring(buffer, length) : L"default";
}

void exportInstance(const std::wstring& instance)
{
    // Whichever way the library reads its environment.
    _wputenv_s(L"TARNHD_INSTANCE", instance.c_str());
    SetEnvironmentVariableW(L"TARNHD_INSTANCE", instance.c_str());
}

std::wstring pipeName(const std::wstring& instance, const wchar_t* part)
{
    return L"\\\\.\\pipe\\tarnhd." + instance + L'.' + part;
}

std::wstring objectName(const std::wstring& instance, const wchar_t* part)
{
    return L"Global\\tarnhd." + instance + L'.' + part;
}

vx::SharedHandle lockPart(const std::wstring& instance, const wchar_t* part)
{
    // Its existence is the lock: the system takes it away when the process ends in whatever way.
    auto lock = std::make_shared<vx::KernelHandle>(CreateMutexW(nullptr, FALSE, objectName(instance, part).c_str()));
    const DWORD error = GetLastError();
    if (error == ERROR_ALREADY_EXISTS || error == ERROR_ACCESS_DENIED)
        return nullptr;
    if (!lock->isValid())
        VX_THROW_WIN32(error);
    return lock;
}

} // namespace devhost::ipc
