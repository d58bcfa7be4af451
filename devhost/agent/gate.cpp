#include "agent/gate.h"

#include "agent/say.h"
#include "ipc/signal.h"
#include "vxtl/str.h"

#include <optional>

namespace devhost::agent {

void pass(const Gate& gate)
{
    // Stays open over the wait: the event must not vanish before somebody has looked at it.
    std::optional<ipc::Signal> started;
    if (!gate.startedEvent.empty())
        started.emplace(vx::str::fromUtf8(gate.startedEvent)).set();
    if (gate.waitForEvent.empty())
        return;
    say("waiting for the event " + gate.waitForEvent);
    ipc::Signal(vx::str::fromUtf8(gate.waitForEvent)).wait(ipc::forever);
}

} // namespace devhost::agent
