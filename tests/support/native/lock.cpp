// Native twin of the locks. Zeros are a fresh lock of each kind here, as on Windows.

#include "vxtl/lock.h"

#include <algorithm>
#include <pthread.h>
#include <time.h>

namespace vx::sync {

namespace {

template <typename Native, std::size_t Size>
Native* as(void* (&storage)[Size]) noexcept
{
    static_assert(sizeof(Native) <= sizeof storage && alignof(Native) <= alignof(void*));
    return reinterpret_cast<Native*>(storage);
}

} // namespace

void Mutex::lock() noexcept
{
    pthread_mutex_lock(as<pthread_mutex_t>(m_native));
}

bool Mutex::try_lock() noexcept
{
    return pthread_mutex_trylock(as<pthread_mutex_t>(m_native)) == 0;
}

void Mutex::unlock() noexcept
{
    pthread_mutex_unlock(as<pthread_mutex_t>(m_native));
}

void SharedMutex::lock() noexcept
{
    pthread_rwlock_wrlock(as<pthread_rwlock_t>(m_native));
}

void SharedMutex::unlock() noexcept
{
    pthread_rwlock_unlock(as<pthread_rwlock_t>(m_native));
}

void SharedMutex::lock_shared() noexcept
{
    pthread_rwlock_rdlock(as<pthread_rwlock_t>(m_native));
}

void SharedMutex::unlock_shared() noexcept
{
    pthread_rwlock_unlock(as<pthread_rwlock_t>(m_native));
}

void ConditionVariable::wait(std::unique_lock<Mutex>& lock) noexcept
{
    pthread_cond_wait(as<pthread_cond_t>(m_native), as<pthread_mutex_t>(lock.mutex()->m_native));
}

bool ConditionVariable::waitFor(std::unique_lock<Mutex>& lock, std::chrono::milliseconds timeout) noexcept
{
    if (timeout.count() <= 0)
        return false;
    constexpr std::chrono::milliseconds longestWait(0x7FFFFFFF);
    const auto wait = std::min(timeout, longestWait).count();
    timespec end{};
    clock_gettime(CLOCK_MONOTONIC, &end);
    end.tv_sec += wait / 1000;
    end.tv_nsec += wait % 1000 * 1'000'000;
    if (end.tv_nsec >= 1'000'000'000) {
        ++end.tv_sec;
        end.tv_nsec -= 1'000'000'000;
    }
    return pthread_cond_clockwait(
               as<pthread_cond_t>(m_native), as<pthread_mutex_t>(lock.mutex()->m_native), CLOCK_MONOTONIC, &end) == 0 ||
           timeout > longestWait;
}

void ConditionVariable::notify_one() noexcept
{
    pthread_cond_signal(as<pthread_cond_t>(m_native));
}

void ConditionVariable::notify_all() noexcept
{
    pthread_cond_broadcast(as<pthread_cond_t>(m_native));
}

} // namespace vx::sync
