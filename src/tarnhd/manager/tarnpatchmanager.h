#pragma once

#include "common/settings/tarnpatchsettings.h"
#include "common/settings/tarnpatchstatus.h"
#include "tarnhd/startreasons/agentstartreason.h"
#include "vxtl/clock.h"
#include "vxtl/lock.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <string>

namespace vx::tarn::common {
class CommonFactory;
class Event;
} // namespace vx::tarn::common

namespace vx::tarn {

class AgentRunner;
class PinnedThread;
class StartReasons;

/// Owns the thread that starts the agent when the shared start event is set. That event exists from construction
/// on, so the manager comes before all launchers. Any thread may call; start and stop exclude each other, and so do
/// updates, so the last one sees the last change. After a stop that ran out of time the thread may outlive this object,
/// see AgentRunner; the module stays loaded for it.
class TarnpatchManager {
public:
    /// `retryPause` lies between two starts while another agent runs, `stopTimeout` is how long stop waits for the
    /// thread. The factory is borrowed. Throws Win32Exception when an event can't be made.
    TarnpatchManager(const std::shared_ptr<settings::Settings>& settings, common::CommonFactory* commonFactory,
        std::chrono::milliseconds retryPause, std::chrono::milliseconds stopTimeout = std::chrono::seconds(10),
        WallClock now = systemTicks);
    /// Stops the thread.
    virtual ~TarnpatchManager();
    TarnpatchManager(const TarnpatchManager&) = delete;
    TarnpatchManager& operator=(const TarnpatchManager&) = delete;

    /// True when the thread was started. A start event set before is dropped. A thread that has left on its own needs
    /// a stop first. Throws what reading the settings throws.
    virtual bool start();
    /// Blocks up to the time-out. True when there was a thread to stop, even if it takes longer. Throws
    /// Win32Exception when the wait fails.
    virtual bool stop();
    /// Starts while the feature is on and no deployment is waited for, otherwise stops; gives that call's result.
    virtual bool update();
    /// Between start and stop.
    virtual bool isRunning() const;
    /// Whether an agent that this manager started is being waited for.
    virtual bool isAgentRunning() const;
    /// The command line of the next agent start only; of the one after that when a start is going on.
    virtual void setArguments(const std::wstring& args);
    /// Goes with the next start event; the later of two wins, unless other reasons than the default ones decide.
    virtual void setStartReason(AgentStartReason reason);
    virtual AgentStartReason getStartReason() const;
    /// Takes the place of LatestReason. Before the first start, and before any other thread knows of the manager.
    void setStartReasons(std::shared_ptr<StartReasons> reasons);

private:
    bool resetEvents();
    std::shared_ptr<common::Event> createStopEvent() const;

    common::CommonFactory* const m_commonFactory; ///< borrowed
    const TarnpatchSettings m_settings;
    const TarnpatchStatus m_status;
    const std::shared_ptr<common::Event> m_startEvent;
    std::shared_ptr<common::Event> m_stopEvent; ///< guarded by m_threadMutex
    const std::shared_ptr<AgentRunner> m_runner;
    std::atomic<bool> m_running = false;
    sync::Mutex m_updateMutex; ///< held over update; before m_threadMutex
    sync::Mutex m_threadMutex;
    std::shared_ptr<PinnedThread> m_actionThread; ///< empty when there is none; guarded by m_threadMutex
    const std::chrono::milliseconds m_stopTimeout;
};

} // namespace vx::tarn
