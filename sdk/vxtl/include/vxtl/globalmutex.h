#pragma once

#include "vxtl/handle.h"
#include "vxtl/sync.h"

#include <string>

namespace vx::sync {

/// A native security descriptor that lets everyone use an object and nobody change its rights. Made at
/// the first call and kept until the module goes. Any thread. Throws Win32Exception.
void* accessibleSecurityDescriptor();

/// Makes the named mutex with the accessible descriptor, not owned; with `openExisting` an existing one is
/// as good, without it that is a failure. Throws Win32Exception.
SharedHandle createAccessibleMutex(const std::wstring& name, bool openExisting);

/// A mutex shared by the processes of all users; fits std::lock_guard. Any thread; owned by a thread, and
/// by one thread several times over.
class GlobalMutex : public IWaitable {
public:
    /// As createAccessibleMutex.
    explicit GlobalMutex(const std::wstring& name, bool openExisting = true);
    GlobalMutex(const GlobalMutex&) = delete;
    GlobalMutex& operator=(const GlobalMutex&) = delete;

    void* getHandle() const override { return m_handle->get(); }

    /// Blocks without a time-out; what a dead owner left behind is taken over. Throws Win32Exception.
    void lock();
    /// Blocks at most that long; false on a time-out. Throws Win32Exception.
    bool tryLock(unsigned long timeoutMs);
    /// Only for the thread that owns the mutex.
    void unlock() noexcept;

private:
    SharedHandle m_handle;
};

} // namespace vx::sync
