#pragma once

#include <cstddef>

namespace vx::logging::details {

/// The system's critical section: a recursive lock of this process. Fits std::lock_guard.
class CriticalSection {
public:
    /// Never throws: a failure stands in error().
    explicit CriticalSection(unsigned long spinCount = 0) noexcept;
    ~CriticalSection();
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;

    /// The system's code of a failed initialisation, 0 when the lock can be used.
    int error() const noexcept { return m_error; }

    void lock() noexcept;
    void unlock() noexcept;

private:
    alignas(8) std::byte m_storage[64];
    int m_error = 0;
};

} // namespace vx::logging::details
