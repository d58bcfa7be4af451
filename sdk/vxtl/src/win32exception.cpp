#include "vxtl/win32exception.h"

#include <windows.h>

namespace vx {

std::wstring Win32ErrorCategory::emptyReason(unsigned long code) noexcept
{
    wchar_t* text = nullptr;
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM, nullptr, code,
        0x400, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    std::wstring result;
    try {
        result.assign(text ? text : L"", length);
    } catch (...) {
        // The exception that is being built must not be replaced by another one.
    }
    LocalFree(text);
    return result;
}

} // namespace vx
