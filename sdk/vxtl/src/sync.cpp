#include "vxtl/sync.h"

#include "vxtl/win32exception.h"

#include <windows.h>

namespace vx::sync::details {

namespace {

DWORD waitForOne(void* handle, DWORD timeoutMs)
{
    const DWORD result = WaitForSingleObject(handle, timeoutMs);
    if (result == WAIT_FAILED)
        VX_THROW_WIN32_AS(L"vx::sync::details::waitForSingleObject", GetLastError(), L"wait failed");
    return result;
}

DWORD waitForAny(std::span<void* const> handles, const wchar_t* function)
{
    const DWORD result = WaitForMultipleObjects(static_cast<DWORD>(handles.size()), handles.data(), FALSE, INFINITE);
    if (result == WAIT_FAILED)
        VX_THROW_WIN32_AS(function, GetLastError(), L"wait failed");
    return result;
}

} // namespace

bool waitForSingleObject(void* handle, unsigned long timeoutMs)
{
    return waitForOne(handle, timeoutMs) != WAIT_TIMEOUT;
}

Fired waitForMultipleObjects(std::span<void* const> handles, const wchar_t* function)
{
    if (handles.empty())
        return {0, false};
    const DWORD result = handles.size() == 1 ? waitForOne(handles[0], INFINITE) : waitForAny(handles, function);
    if (result == WAIT_TIMEOUT)
        return {handles.size(), false};
    const bool isAbandoned = result >= WAIT_ABANDONED_0;
    return {result - (isAbandoned ? WAIT_ABANDONED_0 : WAIT_OBJECT_0), isAbandoned};
}

} // namespace vx::sync::details
