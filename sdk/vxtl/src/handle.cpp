#include "vxtl/handle.h"

#include "logging/logstream.h"

#include <windows.h>

#include <cstdint>
#include <cstdio>

namespace vx {

void details::logCloseFailure(void* handle, unsigned long error) noexcept
{
    char digits[2 * sizeof(void*) + 1];
    std::snprintf(digits, sizeof(digits), "%lX", static_cast<unsigned long>(reinterpret_cast<std::uintptr_t>(handle)));
    logging::LogStream(logging::Level::Error) << "Failed to close winapi handle 0x" << digits << " Error: " << error;
}

void KernelHandleCloser::operator()(void* handle) const noexcept
{
    if (!CloseHandle(handle))
        details::logCloseFailure(handle, GetLastError());
}

} // namespace vx
