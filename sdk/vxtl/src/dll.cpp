#include "dll.h"

#include "vxtl/str.h"
#include "vxtl/win32exception.h"

#include <windows.h>

namespace vx::dll {

void* getModuleHandle(const std::wstring& name) noexcept
{
    return GetModuleHandleW(name.c_str());
}

namespace details {

ProcAddress::ProcAddress(void* module, const char* name)
    : m_address(reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module), name)))
{
    if (!m_address)
        VX_THROW_WIN32(GetLastError(), L"Failure to get address of function " + str::toUnicode(name));
}

} // namespace details

} // namespace vx::dll
