#pragma once

#include "vxtl/handle.h"
#include "vxtl/sync.h"

#include <memory>
#include <string>

namespace vx::tarn::common {

/// A Windows event. Any thread.
class Event : public IWaitable {
public:
    explicit Event(SharedHandle handle) : m_handle(std::move(handle)) {}

    /// An empty name makes an unnamed event. Both start clear. Throw Win32Exception.
    static std::shared_ptr<Event> createAutoResetEvent(const std::wstring& name, bool inheritHandle);
    static std::shared_ptr<Event> createManualResetEvent(const std::wstring& name, bool inheritHandle);

    void* getHandle() const override { return m_handle->get(); }
    /// False when the system call failed; GetLastError tells why.
    virtual bool set();
    virtual bool reset();

private:
    SharedHandle m_handle;
};

/// Makes an event; an empty name makes an unnamed one. An existing event of the name is as good, also one that can only
/// be waited on and set. `securityDescriptor` is a native descriptor or null, borrowed for the call. Throws
/// Win32Exception after logging "Failed to create event: ".
std::shared_ptr<Event> createEvent(bool manualReset, bool initialState, const std::wstring& name, bool inheritHandle,
    void* securityDescriptor = nullptr);

/// Opens a named event with the given access mask. Throws Win32Exception.
std::shared_ptr<Event> openEvent(unsigned long access, const std::wstring& name, bool inheritHandle);

} // namespace vx::tarn::common
