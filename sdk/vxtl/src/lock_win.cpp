#include "vxtl/lock.h"

#include <algorithm>
#include <windows.h>

namespace vx::sync {

namespace {

SRWLOCK* slim(void** storage) noexcept
{
    static_assert(sizeof(SRWLOCK) == sizeof(void*));
    return reinterpret_cast<SRWLOCK*>(storage);
}

CONDITION_VARIABLE* condition(void** storage) noexcept
{
    static_assert(sizeof(CONDITION_VARIABLE) == sizeof(void*));
    return reinterpret_cast<CONDITION_VARIABLE*>(storage);
}

constexpr std::chrono::milliseconds longestWait(0x7FFFFFFF);

} // namespace

void Mutex::lock() noexcept
{
    AcquireSRWLockExclusive(slim(m_native));
}

bool Mutex::try_lock() noexcept
{
    return TryAcquireSRWLockExclusive(slim(m_native)) != 0;
}

void Mutex::unlock() noexcept
{
    ReleaseSRWLockExclusive(slim(m_native));
}

void SharedMutex::lock() noexcept
{
    AcquireSRWLockExclusive(slim(m_native));
}

void SharedMutex::unlock() noexcept
{
    ReleaseSRWLockExclusive(slim(m_native));
}

void SharedMutex::lock_shared() noexcept
{
    AcquireSRWLockShared(slim(m_native));
}

void SharedMutex::unlock_shared() noexcept
{
    ReleaseSRWLockShared(slim(m_native));
}

void ConditionVariable::wait(std::unique_lock<Mutex>& lock) noexcept
{
    SleepConditionVariableSRW(condition(m_native), slim(lock.mutex()->m_native), INFINITE, 0);
}

bool ConditionVariable::waitFor(std::unique_lock<Mutex>& lock, std::chrono::milliseconds timeout) noexcept
{
    // Newer systems may sleep a whole clock interval in a wait of nothing.
    if (timeout.count() <= 0)
        return false;
    const auto milliseconds = static_cast<DWORD>(std::min(timeout, longestWait).count());
    return SleepConditionVariableSRW(condition(m_native), slim(lock.mutex()->m_native), milliseconds, 0) != 0 ||
           timeout > longestWait;
}

void ConditionVariable::notify_one() noexcept
{
    WakeConditionVariable(condition(m_native));
}

void ConditionVariable::notify_all() noexcept
{
    WakeAllConditionVariable(condition(m_native));
}

} // namespace vx::sync
