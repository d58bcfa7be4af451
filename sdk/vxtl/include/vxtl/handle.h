#pragma once

#include <memory>

namespace vx {

/// Owns a native handle; neither copied nor moved, usually held through a shared pointer. `Closer`
/// closes a valid handle and logs its own failure; it never throws. `Invalid` answers whether a value is no
/// handle.
template <typename Handle, typename Closer, typename Invalid>
class AutomaticHandle {
public:
    explicit AutomaticHandle(Handle handle) noexcept : m_handle(handle) {}
    ~AutomaticHandle()
    {
        if (isValid())
            Closer{}(m_handle);
    }
    AutomaticHandle(const AutomaticHandle&) = delete;
    AutomaticHandle& operator=(const AutomaticHandle&) = delete;

    Handle get() const noexcept { return m_handle; }
    bool isValid() const noexcept { return !Invalid{}(m_handle); }

private:
    Handle m_handle;
};

namespace details {
/// Logs that a handle could not be closed. Never throws.
void logCloseFailure(void* handle, unsigned long error) noexcept;
} // namespace details

/// Closes with CloseHandle.
struct KernelHandleCloser {
    void operator()(void* handle) const noexcept;
};

/// Null and the system's INVALID_HANDLE_VALUE (-1) are no handles.
struct NoKernelHandle {
    bool operator()(void* handle) const noexcept { return !handle || handle == reinterpret_cast<void*>(-1); }
};

/// A process, thread, event, mutex, pipe or token handle.
using KernelHandle = AutomaticHandle<void*, KernelHandleCloser, NoKernelHandle>;
using SharedHandle = std::shared_ptr<KernelHandle>;

} // namespace vx
