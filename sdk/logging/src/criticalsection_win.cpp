#include "logging/details/criticalsection.h"

#include <windows.h>

namespace vx::logging::details {

namespace {

CRITICAL_SECTION* native(std::byte* storage)
{
    return reinterpret_cast<CRITICAL_SECTION*>(storage);
}

} // namespace

CriticalSection::CriticalSection(unsigned long spinCount) noexcept
{
    static_assert(sizeof(CRITICAL_SECTION) <= sizeof m_storage && alignof(CRITICAL_SECTION) <= 8);
    if (!InitializeCriticalSectionAndSpinCount(native(m_storage), spinCount))
        m_error = static_cast<int>(GetLastError());
}

CriticalSection::~CriticalSection()
{
    if (m_error == 0)
        DeleteCriticalSection(native(m_storage));
}

void CriticalSection::lock() noexcept
{
    EnterCriticalSection(native(m_storage));
}

void CriticalSection::unlock() noexcept
{
    LeaveCriticalSection(native(m_storage));
}

} // namespace vx::logging::details
