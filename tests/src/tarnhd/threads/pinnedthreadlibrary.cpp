#include "tarnhd/threads/pinnedthread.h"
#include "vxtl/modulelife.h"

#include <stdexcept>
#include <string>
#include <windows.h>

/// Starts a thread that waits for `go`, fails and ends; gives a handle of the thread, owned by the caller.
extern "C" __declspec(dllexport) HANDLE startLateThread(HANDLE go)
{
    const vx::tarn::PinnedThread thread([go, text = std::string(100, 'x')] {
        WaitForSingleObject(go, INFINITE);
        throw std::runtime_error(text);
    });
    HANDLE copy = nullptr;
    DuplicateHandle(
        GetCurrentProcess(), thread.getHandle(), GetCurrentProcess(), &copy, 0, FALSE, DUPLICATE_SAME_ACCESS);
    return copy;
}

extern "C" __declspec(dllexport) bool isKept()
{
    return vx::modulelife::isKept();
}
