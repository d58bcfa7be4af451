#include "host/signal.h"

#include <windows.h>

namespace devhost::host {

Signal::Signal() : m_event(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}

Signal::~Signal()
{
    CloseHandle(m_event);
}

void Signal::set()
{
    SetEvent(m_event);
}

bool Signal::isSet() const
{
    return wait(0);
}

bool Signal::waitOr(const Signal& other, unsigned long timeoutMs) const
{
    const HANDLE events[] = {m_event, other.m_event};
    return WaitForMultipleObjects(2, events, FALSE, timeoutMs) != WAIT_TIMEOUT;
}

bool Signal::wait(unsigned long timeoutMs) const
{
    return WaitForSingleObject(m_event, timeoutMs) == WAIT_OBJECT_0;
}

} // namespace devhost::host
