#pragma once

#include "common/settings/tarnpatchstatus.h"
#include "tarnhd/startreasons/startreasons.h"
#include "vxtl/clock.h"
#include "vxtl/lock.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

namespace vx::tarn::common {
class CommonFactory;
class Event;
class IProcess;
} // namespace vx::tarn::common

namespace vx::tarn {

class TarnpatchSettings;

/// What the action thread runs and all that it uses. Manager and thread share it, so that a thread which is stuck
/// in a system or store call may outlive the manager: it finds its stop event set as soon as it goes on, and leaves
/// without another agent start. The factory is borrowed and used only at the beginning of a start, before anything
/// that can block. Apart from actionThread all operations are for any thread.
class AgentRunner {
public:
    AgentRunner(const TarnpatchSettings& settings, const TarnpatchStatus& status, common::CommonFactory* commonFactory,
        std::shared_ptr<common::Event> startEvent, std::chrono::milliseconds retryPause, WallClock now);
    AgentRunner(const AgentRunner&) = delete;
    AgentRunner& operator=(const AgentRunner&) = delete;

    /// Blocks and starts the agent at each start event, until the stop event. What fails in one round is logged, and
    /// the next event is waited for. An agent that runs at the stop goes on running.
    void actionThread(common::Event& stopEvent);

    /// Takes the time of the last good run from the status.
    void loadLastStartTimestamp();
    bool isAgentRunning() const { return m_agentsWaitedFor > 0; }
    /// The command line of the next start. A start that succeeds uses up the one that it began with.
    void setArguments(const std::wstring& args);
    /// Takes the place of the latest reason alone. Before the first thread.
    void setStartReasons(std::shared_ptr<StartReasons> reasons) { m_reasons = std::move(reasons); }
    StartReasons& startReasons() const { return *m_reasons; }

private:
    /// How an attempt to start the agent ended; AlreadyRunning is what the agent itself answers.
    enum class Result { Finished = 0, Failed = 1, AlreadyRunning = 2 };

    bool startEventSignaled(common::Event& stopEvent);
    bool agentStartRequested(StartReasons::Round& round, common::Event& stopEvent);
    Result startAgent(StartReasons::Round& round, common::Event& stopEvent);
    Result runAgent(StartReasons::Round& round, common::Event& stopEvent);
    bool startProcess(common::IProcess& process, const std::wstring& args);
    void storeLastStartTimestamp(std::int64_t timestamp);
    std::wstring arguments() const;
    void replaceArguments(const std::wstring& args); ///< under m_argumentsMutex
    void useUpArguments(const std::wstring& used);

    common::CommonFactory* const m_commonFactory; ///< borrowed
    mutable sync::Mutex m_argumentsMutex;
    std::wstring m_arguments; ///< guarded by m_argumentsMutex
    const TarnpatchStatus m_status;
    const std::shared_ptr<common::Event> m_startEvent;
    std::atomic<int> m_agentsWaitedFor = 0; ///< more than one only beside a late thread
    sync::Mutex m_timestampMutex;
    std::int64_t m_lastStartTimestamp = -1; ///< seconds since the Unix epoch; guarded by m_timestampMutex
    const std::chrono::milliseconds m_retryPause;
    const std::int32_t m_maxRetries = 3600;
    std::shared_ptr<StartReasons> m_reasons;
    const WallClock m_now;
};

} // namespace vx::tarn
