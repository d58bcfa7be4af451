#include "vxtl/sync.h"

#include "vxtl/win32exception.h"

#include <windows.h>

namespace vx::sync::details {

bool waitForSingleObject(void* handle, unsigned long timeoutMs)
{
    const DWORD result = WaitForSingleObject(handle, timeoutMs);
    if (result == WAIT_FAILED)
        VX_THROW_WIN32(GetLastError(), L"wait failed");
    return result != WAIT_TIMEOUT;
}

std::size_t waitForMultipleObjects(std::span<void* const> handles)
{
    if (handles.empty())
        return 0;
    if (handles.size() == 1)
        return waitForSingleObject(handles[0], infinite) ? 0 : 1;
    const DWORD result = WaitForMultipleObjects(static_cast<DWORD>(handles.size()), handles.data(), FALSE, INFINITE);
    if (result == WAIT_FAILED)
        VX_THROW_WIN32(GetLastError(), L"wait failed");
    if (result == WAIT_TIMEOUT)
        return handles.size();
    return result >= WAIT_ABANDONED_0 ? result - WAIT_ABANDONED_0 : result - WAIT_OBJECT_0;
}

} // namespace vx::sync::details
