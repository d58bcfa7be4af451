#include "agent/gate.h"

#include "agent/say.h"
#include "vxtl/str.h"

#include <optional>
#include <stdexcept>
#include <windows.h>

namespace devhost::agent {

NamedEvent::NamedEvent(const std::string& name)
    : m_handle(CreateEventW(nullptr, TRUE, FALSE, vx::str::fromUtf8(name).c_str()))
{
    if (!m_handle)
        throw std::runtime_error("event " + name + ": error " + std::to_string(GetLastError()));
}

NamedEvent::~NamedEvent()
{
    CloseHandle(m_handle);
}

void NamedEvent::set()
{
    SetEvent(m_handle);
}

void NamedEvent::wait()
{
    WaitForSingleObject(m_handle, INFINITE);
}

void pass(const Gate& gate)
{
    // Stays open over the wait: the event must not vanish before somebody has looked at it.
    std::optional<NamedEvent> started;
    if (!gate.startedEvent.empty())
        started.emplace(gate.startedEvent).set();
    if (gate.waitForEvent.empty())
        return;
    say("waiting for the event " + gate.waitForEvent);
    NamedEvent(gate.waitForEvent).wait();
}

} // namespace devhost::agent
