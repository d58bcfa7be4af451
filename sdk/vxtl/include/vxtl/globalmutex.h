#pragma once

#include "vxtl/handle.h"
#include "vxtl/sync.h"

#include <stdexcept>
#include <string>

namespace vx::sync {

/// A native security descriptor that lets everyone use an object and nobody change its rights. Made at
/// the first call and kept until the module goes. Any thread. Throws Win32Exception.
void* accessibleSecurityDescriptor();

/// Makes the named mutex with the accessible descriptor, not owned; with `openExisting` an existing one is
/// as good, without it that is a failure. Throws Win32Exception.
SharedHandle createAccessibleMutex(const std::wstring& name, bool openExisting);

/// A wait that a stop has ended. Not of the BaseException family: who answers for a failed operation by one of those
/// must not take a stop for it.
class StoppedException : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// How the owner before left a mutex.
enum class PreviousOwner { Released, Died };

/// A mutex shared by the processes of all users; fits std::lock_guard. Any thread; owned by a thread, and
/// by one thread several times over.
class GlobalMutex : public IWaitable {
public:
    /// As createAccessibleMutex. Waits end as soon as `stopEvent` fires; without one only the mutex ends them.
    explicit GlobalMutex(
        const std::wstring& name, bool openExisting = true, std::shared_ptr<const IWaitable> stopEvent = nullptr);
    GlobalMutex(const GlobalMutex&) = delete;
    GlobalMutex& operator=(const GlobalMutex&) = delete;

    void* getHandle() const override { return m_handle->get(); }

    /// Blocks without a time-out; what a dead owner left behind is taken over, and its last step may be half done.
    /// A mutex that is free is taken in any case. Throws Win32Exception, and StoppedException when the stop
    /// event ended the wait.
    PreviousOwner lock();
    /// Whether the stop event has fired.
    bool isStopped() const;
    /// Blocks at most that long, whatever the stop event says; false on a time-out. Throws Win32Exception.
    bool tryLock(unsigned long timeoutMs);
    /// Only for the thread that owns the mutex.
    void unlock() noexcept;

private:
    const std::wstring m_name;
    SharedHandle m_handle;
    const std::shared_ptr<const IWaitable> m_stopEvent;
};

} // namespace vx::sync
