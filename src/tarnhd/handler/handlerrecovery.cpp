#include "tarnhd/handler/handlerrecovery.h"

#include "common/event/event.h"
#include "common/settings/hostsettings.h"
#include "common/updaterlauncher/iupdaterlauncher.h"
#include "tarnhd/manager/tarnpatchmanager.h"
#include "vxtl/guarded.h"

namespace vx::tarn {

HandlerRecovery::HandlerRecovery(common::Event& statusChangedEvent, TarnpatchManager& manager,
    common::IUpdaterLauncher& updaterLauncher, const StoreAccesses& accesses)
    : m_statusChangedEvent(statusChangedEvent), m_manager(manager), m_updaterLauncher(updaterLauncher),
      m_accesses(accesses)
{}

void HandlerRecovery::publish()
{
    m_statusChangedEvent.set();
}

void HandlerRecovery::startAgent()
{
    m_updaterLauncher.startScan();
}

bool HandlerRecovery::isAgentStartTaken() const
{
    return m_manager.isRunning();
}

void HandlerRecovery::writeKeptValues()
{
    // A cache writes what it has kept after any read that succeeds. This key is there, or run would still wait for it.
    for (const auto& access : m_accesses)
        if (const auto settings = access.lock())
            guarded([&] { HostSettings(settings).lastSuccessfulUpdateTimestamp(); });
}

} // namespace vx::tarn
