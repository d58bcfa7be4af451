#include "tarnhd/threads/pinnedthread.h"

#include "vxtl/guarded.h"
#include "vxtl/modulelife.h"
#include "vxtl/win32exception.h"

#include <windows.h>

namespace vx::tarn {

namespace {

struct Start {
    std::function<void()> body;
    HMODULE module;
};

DWORD WINAPI runBody(void* argument)
{
    HMODULE module = nullptr;
    {
        const std::unique_ptr<Start> start(static_cast<Start*>(argument));
        module = start->module;
        guarded("Exception caught: ", start->body);
    }
    // The last reference may be this thread's own: no code of the module can run behind its release.
    FreeLibraryAndExitThread(module, 0);
    return 0;
}

HMODULE pinModule()
{
    HMODULE module = nullptr;
    if (!GetModuleHandleExW(
            GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<const wchar_t*>(&runBody), &module))
        VX_THROW_WIN32(GetLastError());
    return module;
}

} // namespace

PinnedThread::PinnedThread(std::function<void()> body)
{
    // Pinned before the thread exists: it may run late, after its starter has let the module go.
    auto start = std::make_unique<Start>(Start{std::move(body), nullptr});
    start->module = pinModule();
    HANDLE handle = CreateThread(nullptr, 0, &runBody, start.get(), 0, nullptr);
    const DWORD error = GetLastError();
    if (!handle) {
        FreeLibrary(start->module);
        VX_THROW_WIN32(error);
    }
    start.release();
    m_handle = std::make_shared<KernelHandle>(handle);
}

PinnedThread::~PinnedThread()
{
    // The handle fires after the thread's reference to the module is gone.
    if (WaitForSingleObject(m_handle->get(), 0) != WAIT_OBJECT_0)
        modulelife::noteReferenceLeft();
}

} // namespace vx::tarn
