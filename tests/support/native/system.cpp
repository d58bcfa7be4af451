// Native twins of single calls to the system; errno stands for the last error.

#include "common/utils/localtime.h"
#include "logging/details/criticalsection.h"
#include "logging/details/lasterror.h"
#include "logging/details/threadid.h"
#include "vxtl/clock.h"
#include "vxtl/modulelife.h"
#include "vxtl/win32exception.h"

#include <cerrno>
#include <mutex>
#include <new>
#include <time.h>
#include <unistd.h>

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

LastErrorKeeper::LastErrorKeeper() noexcept : m_lastError(static_cast<unsigned long>(errno)) {}

LastErrorKeeper::~LastErrorKeeper()
{
    errno = static_cast<int>(m_lastError);
}

unsigned long currentThreadId() noexcept
{
    return static_cast<unsigned long>(gettid());
}

} // namespace vx::logging::details

namespace vx {

namespace {

std::chrono::nanoseconds read(clockid_t clock) noexcept
{
    timespec now{};
    clock_gettime(clock, &now);
    return std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
}

} // namespace

Ticks systemTicks() noexcept
{
    return read(CLOCK_REALTIME).count() / 100;
}

std::chrono::milliseconds uptime() noexcept
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(read(CLOCK_MONOTONIC));
}

} // namespace vx

// Nothing is ever unloaded here.
void vx::modulelife::keep() noexcept
{
    noteReferenceLeft();
}

std::wstring vx::Win32ErrorCategory::emptyReason(unsigned long) noexcept
{
    return {};
}

std::optional<vx::DateTime::Parts> vx::tarn::common::utils::toLocalTime(std::int64_t time) noexcept
{
    std::tm parts{};
    const std::time_t native = time;
    if (time < 0 || !localtime_r(&native, &parts))
        return std::nullopt;
    const auto part = [](int value) { return static_cast<unsigned>(value); };
    return DateTime::Parts{part(parts.tm_year + 1900), part(parts.tm_mon + 1), part(parts.tm_mday), part(parts.tm_hour),
        part(parts.tm_min), part(parts.tm_sec), 0};
}

std::optional<std::int64_t> vx::tarn::common::utils::fromLocalTime(const DateTime::Parts& parts) noexcept
{
    const auto part = [](unsigned value) { return static_cast<int>(value); };
    std::tm native{};
    native.tm_year = part(parts.year) - 1900;
    native.tm_mon = part(parts.month) - 1;
    native.tm_mday = part(parts.day);
    native.tm_hour = part(parts.hour);
    native.tm_min = part(parts.minute);
    native.tm_sec = part(parts.second);
    native.tm_isdst = -1;
    return std::mktime(&native);
}
