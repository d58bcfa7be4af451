#pragma once

#include "tarnhd/wusstopper/wuspoll.h"

#include <memory>

namespace vx::tarn {

class JoinedThread;

/// Keeps the Windows Update service stopped once its trigger key is there, and forces the reboot that is due; on a
/// thread of its own between start and stop. Operations come from one thread.
class WUSStopper {
public:
    /// The factory is borrowed.
    WUSStopper(const std::shared_ptr<settings::Settings>& settings, common::CommonFactory* commonFactory,
        const WUSStopperOptions& options = {});
    /// Stops.
    virtual ~WUSStopper();
    WUSStopper(const WUSStopper&) = delete;
    WUSStopper& operator=(const WUSStopper&) = delete;

    /// A failure is logged; there is no thread then.
    virtual void start();
    /// Blocks until the round in hand has ended. That is at once but for a call of the system or the store that
    /// hangs: waits of the round end with the stop.
    virtual void stop();
    /// Deletes the trigger key where there is one. A failure is logged and false. A thread that has seen the key goes
    /// on stopping the service.
    virtual bool cleanupStopFlag();

private:
    void endThread() noexcept;

    common::CommonFactory* const m_commonFactory;
    const std::shared_ptr<registry::Registry> m_registry;
    WUSPoll m_poll; ///< of the thread, while there is one
    std::shared_ptr<common::Event> m_stopEvent;
    std::shared_ptr<common::Event> m_registryEvent;
    std::unique_ptr<JoinedThread> m_pollThread;
};

} // namespace vx::tarn
