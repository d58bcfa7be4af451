#include "vxtl/wow64.h"

#include "dll.h"
#include "vxtl/win32exception.h"

#include <windows.h>

namespace vx::wow64 {

namespace {

/// Null on a system that lacks the function.
template <typename Function>
Function* find(const char* name) noexcept
{
    auto* kernel = static_cast<HMODULE>(dll::getModuleHandle(L"kernel32"));
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(kernel, name)));
}

} // namespace

bool isWow64()
{
    auto* isWow64Process = find<BOOL WINAPI(HANDLE, BOOL*)>("IsWow64Process");
    BOOL result = FALSE;
    if (isWow64Process && !isWow64Process(GetCurrentProcess(), &result))
        VX_THROW_WIN32(GetLastError());
    return result != FALSE;
}

DisabledFsRedirection::DisabledFsRedirection() noexcept
{
    auto* disable = find<BOOL WINAPI(void**)>("Wow64DisableWow64FsRedirection");
    m_disabled = disable && disable(&m_oldValue);
}

DisabledFsRedirection::~DisabledFsRedirection()
{
    if (!m_disabled)
        return;
    auto* revert = find<BOOL WINAPI(void*)>("Wow64RevertWow64FsRedirection");
    if (revert && !revert(m_oldValue)) {
        const DWORD error = GetLastError();
        logging::LogStream(logging::Level::Warning) << "Wow64RevertWow64FsRedirection failed with error code " << error;
    }
}

} // namespace vx::wow64
