#include "ipc/signal.h"

#include "vxtl/str.h"

#include <stdexcept>
#include <windows.h>

namespace devhost::ipc {

Signal::Signal(const std::wstring& name)
    : m_event(CreateEventW(nullptr, TRUE, FALSE, name.empty() ? nullptr : name.c_str()))
{
    if (!m_event.isValid())
        throw std::runtime_error("event " + vx::str::toUtf8(name) + ": error " + std::to_string(GetLastError()));
}

void Signal::set() const
{
    SetEvent(handle());
}

void Signal::reset() const
{
    ResetEvent(handle());
}

bool Signal::isSet() const
{
    return wait(0);
}

bool Signal::waitOr(const Signal& other, unsigned long timeoutMs) const
{
    const HANDLE events[] = {handle(), other.handle()};
    return WaitForMultipleObjects(2, events, FALSE, timeoutMs) != WAIT_TIMEOUT;
}

bool Signal::wait(unsigned long timeoutMs) const
{
    return WaitForSingleObject(handle(), timeoutMs) == WAIT_OBJECT_0;
}

} // namespace devhost::ipc
