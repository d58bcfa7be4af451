#include "common/event/event.h"

#include "vxtl/win32exception.h"

#include <windows.h>

namespace vx::tarn::common {

namespace {

const wchar_t* nameOrNull(const std::wstring& name)
{
    return name.empty() ? nullptr : name.c_str();
}

void* createOrOpen(SECURITY_ATTRIBUTES& attributes, bool manualReset, bool initialState, const std::wstring& name)
{
    void* handle = CreateEventW(&attributes, manualReset, initialState, nameOrNull(name));
    if (handle || GetLastError() != ERROR_ACCESS_DENIED)
        return handle;
    // Creating asks an existing event for rights that the accessible descriptor denies; its use needs none of them.
    handle = OpenEventW(SYNCHRONIZE | EVENT_MODIFY_STATE, attributes.bInheritHandle, name.c_str());
    if (!handle)
        SetLastError(ERROR_ACCESS_DENIED);
    return handle;
}

} // namespace

std::shared_ptr<Event> Event::createAutoResetEvent(const std::wstring& name, bool inheritHandle)
{
    return createEvent(false, false, name, inheritHandle);
}

std::shared_ptr<Event> Event::createManualResetEvent(const std::wstring& name, bool inheritHandle)
{
    return createEvent(true, false, name, inheritHandle);
}

bool Event::set()
{
    return SetEvent(getHandle()) != FALSE;
}

bool Event::reset()
{
    return ResetEvent(getHandle()) != FALSE;
}

std::shared_ptr<Event> createEvent(
    bool manualReset, bool initialState, const std::wstring& name, bool inheritHandle, void* securityDescriptor)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(manualReset, initialState, name, inheritHandle);
    SECURITY_ATTRIBUTES attributes = {sizeof(attributes), securityDescriptor, inheritHandle};
    void* handle = createOrOpen(attributes, manualReset, initialState, name);
    if (!handle) {
        const DWORD error = GetLastError();
        logging::LogStream(logging::Level::Error) << "Failed to create event: " << name;
        VX_THROW_WIN32(error);
    }
    return std::make_shared<Event>(std::make_shared<KernelHandle>(handle));
}

std::shared_ptr<Event> openEvent(unsigned long access, const std::wstring& name, bool inheritHandle)
{
    void* handle = OpenEventW(access, inheritHandle, name.c_str());
    if (!handle)
        VX_THROW_WIN32(GetLastError());
    return std::make_shared<Event>(std::make_shared<KernelHandle>(handle));
}

} // namespace vx::tarn::common
