#include "process/pipe.h"

#include "vxtl/win32exception.h"

#include <windows.h>

namespace vx::pipe {

namespace {

void disinherit(HANDLE handle)
{
    if (SetHandleInformation(handle, HANDLE_FLAG_INHERIT, 0))
        return;
    const DWORD error = GetLastError();
    VX_THROW_AS(Win32Exception, L"vx::pipe::createPipe", error, L"SetHandleInformation failed");
}

} // namespace

std::pair<SharedHandle, SharedHandle> createPipe(bool inheritRead, bool inheritWrite)
{
    SECURITY_ATTRIBUTES attributes{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    HANDLE read = nullptr;
    HANDLE write = nullptr;
    if (!CreatePipe(&read, &write, &attributes, 0)) {
        const DWORD error = GetLastError();
        VX_THROW_WIN32(error, L"CreatePipe failed");
    }
    std::pair ends(std::make_shared<KernelHandle>(read), std::make_shared<KernelHandle>(write));
    if (!inheritRead)
        disinherit(read);
    if (!inheritWrite)
        disinherit(write);
    return ends;
}

} // namespace vx::pipe
