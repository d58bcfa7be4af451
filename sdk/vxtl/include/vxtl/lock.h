#pragma once

#include "vxtl/clock.h"

#include <atomic>
#include <chrono>
#include <mutex>

/// Locks of one process, fit for std::lock_guard, std::unique_lock and std::shared_lock. The standard library's own
/// leave a semaphore behind at each unload of a library that the cross compiler built, and its timed waits end in
/// 2038. Nothing here throws or needs to be destroyed, so a static lock is ready before any code runs and still
/// there after all of it.
namespace vx::sync {

/// Not recursive.
class Mutex {
public:
    constexpr Mutex() noexcept = default;
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    void lock() noexcept;
    bool try_lock() noexcept;
    void unlock() noexcept;

private:
    friend class ConditionVariable;
    void* m_native[6]{}; ///< the system's lock is one pointer; the native twin's is larger
};

/// Many readers or one writer; not recursive, not even for readers.
class SharedMutex {
public:
    constexpr SharedMutex() noexcept = default;
    SharedMutex(const SharedMutex&) = delete;
    SharedMutex& operator=(const SharedMutex&) = delete;

    void lock() noexcept;
    void unlock() noexcept;
    void lock_shared() noexcept;
    void unlock_shared() noexcept;

private:
    void* m_native[7]{};
};

/// Owned by a thread, and by one thread several times over.
class RecursiveMutex {
public:
    constexpr RecursiveMutex() noexcept = default;
    RecursiveMutex(const RecursiveMutex&) = delete;
    RecursiveMutex& operator=(const RecursiveMutex&) = delete;

    void lock() noexcept;
    void unlock() noexcept;
    bool isOwnedByCaller() const noexcept;

private:
    Mutex m_mutex;
    std::atomic<unsigned long> m_owner{0}; ///< the system's thread id; 0 is nobody's
    unsigned m_depth = 0;                  ///< guarded by m_mutex
};

/// What one thread waits for and another one tells. Waits may end without a reason, so callers look again.
class ConditionVariable {
public:
    constexpr ConditionVariable() noexcept = default;
    ConditionVariable(const ConditionVariable&) = delete;
    ConditionVariable& operator=(const ConditionVariable&) = delete;

    void wait(std::unique_lock<Mutex>& lock) noexcept;
    template <typename Condition>
    void wait(std::unique_lock<Mutex>& lock, Condition condition)
    {
        while (!condition())
            wait(lock);
    }
    /// False when the time has passed, which is at once when nothing of it is left. A time beyond 24 days ends early
    /// and gives true, as a wait without a reason does.
    bool waitFor(std::unique_lock<Mutex>& lock, std::chrono::milliseconds timeout) noexcept;
    /// What the condition says when the time has passed, if not true before.
    template <typename Condition>
    bool waitFor(std::unique_lock<Mutex>& lock, std::chrono::milliseconds timeout, Condition condition)
    {
        const std::chrono::milliseconds begin = uptime();
        while (!condition())
            if (!waitFor(lock, timeout - (uptime() - begin)))
                return condition();
        return true;
    }

    void notify_one() noexcept;
    void notify_all() noexcept;

private:
    void* m_native[6]{};
};

} // namespace vx::sync
