// Native twin of the critical section.

#include "logging/details/criticalsection.h"

#include <mutex>
#include <new>

namespace vx::logging::details {

namespace {

std::recursive_mutex& native(std::byte* storage)
{
    return *std::launder(reinterpret_cast<std::recursive_mutex*>(storage));
}

} // namespace

CriticalSection::CriticalSection(unsigned long) noexcept
{
    static_assert(sizeof(std::recursive_mutex) <= sizeof m_storage && alignof(std::recursive_mutex) <= 8);
    new (m_storage) std::recursive_mutex;
}

CriticalSection::~CriticalSection()
{
    native(m_storage).~recursive_mutex();
}

void CriticalSection::lock() noexcept
{
    native(m_storage).lock();
}

void CriticalSection::unlock() noexcept
{
    native(m_storage).unlock();
}

} // namespace vx::logging::details
