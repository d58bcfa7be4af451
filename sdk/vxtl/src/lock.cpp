#include "vxtl/lock.h"

#include "logging/details/threadid.h"

namespace vx::sync {

using logging::details::currentThreadId;

void RecursiveMutex::lock() noexcept
{
    if (!isOwnedByCaller()) {
        m_mutex.lock();
        m_owner.store(currentThreadId(), std::memory_order_relaxed);
    }
    ++m_depth;
}

void RecursiveMutex::unlock() noexcept
{
    if (--m_depth != 0)
        return;
    m_owner.store(0, std::memory_order_relaxed);
    m_mutex.unlock();
}

// No other thread ever writes this thread's id, so an old value can't be taken for it.
bool RecursiveMutex::isOwnedByCaller() const noexcept
{
    return m_owner.load(std::memory_order_relaxed) == currentThreadId();
}

} // namespace vx::sync
