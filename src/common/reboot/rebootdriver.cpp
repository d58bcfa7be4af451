#include "common/reboot/rebootdriver.h"

#include "vxtl/handle.h"

#include <windows.h>

namespace vx::tarn::common {

namespace {

constexpr DWORD shutdownReason = 0x13; // as the system's event log shows it

} // namespace

std::optional<PrivilegeFailure> RebootDriver::enableShutdownPrivilege()
{
    HANDLE handle = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, &handle))
        return PrivilegeFailure{PrivilegeFailure::Step::OpenToken, GetLastError()};
    const KernelHandle token(handle);
    TOKEN_PRIVILEGES privileges = {};
    privileges.PrivilegeCount = 1;
    privileges.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
    // Without the privilege's number the reboot itself is refused, and that is logged.
    LookupPrivilegeValueW(nullptr, L"SeShutdownPrivilege", &privileges.Privileges[0].Luid);
    if (!AdjustTokenPrivileges(token.get(), FALSE, &privileges, 0, nullptr, nullptr))
        return PrivilegeFailure{PrivilegeFailure::Step::AdjustToken, GetLastError()};
    return std::nullopt;
}

std::optional<unsigned long> RebootDriver::reboot()
{
    if (ExitWindowsEx(EWX_REBOOT, shutdownReason))
        return std::nullopt;
    return GetLastError();
}

} // namespace vx::tarn::common
