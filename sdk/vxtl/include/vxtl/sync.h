#pragma once

#include <cstddef>
#include <iterator>
#include <span>
#include <vector>

namespace vx {

/// Something whose handle a thread can wait on.
class IWaitable {
public:
    virtual ~IWaitable() = default;
    /// The native handle; borrowed.
    virtual void* getHandle() const = 0;
};

namespace sync {

/// Milliseconds; the system's INFINITE.
inline constexpr unsigned long infinite = 0xFFFFFFFF;

namespace details {
/// False on a time-out.
bool waitForSingleObject(void* handle, unsigned long timeoutMs);
/// Which of several handles ended a wait.
struct Fired {
    std::size_t index;
    bool isAbandoned; ///< a mutex whose owner has died
};
/// The handle that fired, an abandoned mutex included; the index is handles.size() on an empty list. A failure with
/// several handles is reported as the named function's.
Fired waitForMultipleObjects(
    std::span<void* const> handles, const wchar_t* function = L"vx::sync::details::waitForMultipleObjects");
} // namespace details

/// Blocks until the object fires: true, also for an abandoned mutex. False on a time-out. Throws
/// Win32Exception "wait failed".
inline bool waitForSingleObject(const IWaitable& waitable, unsigned long timeoutMs)
{
    return details::waitForSingleObject(waitable.getHandle(), timeoutMs);
}

/// Blocks without a time-out until any object fires and gives its iterator; the earlier one in the list
/// when several have. Elements are pointers of any kind to IWaitable. An empty list gives its end at
/// once. At most 64 elements. Throws Win32Exception "wait failed".
template <typename List>
auto waitForMultipleObjects(const List& list)
{
    std::vector<void*> handles;
    for (const auto& waitable : list)
        handles.push_back(waitable->getHandle());
    return std::next(std::begin(list), static_cast<std::ptrdiff_t>(details::waitForMultipleObjects(handles).index));
}

} // namespace sync

} // namespace vx
