#pragma once

#include "tarnhd/actionscheduler/actionbase.h"
#include "tarnhd/actionscheduler/taskscheduler.h"
#include "vxtl/lock.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace vx::tarn {

/// Runs periodic actions, all in order at each tick, and one-shot actions with a delay, on the thread that
/// calls start. The period counts from the end of one round to the start of the next. Other threads may call
/// all operations; runOnce and setEnabled block while a round runs. What an action throws is
/// logged at error level; the other actions and the next tick go on. Locks are taken in the order
/// m_enabledMutex, m_actionsMutex, the task scheduler's own.
class ActionScheduler {
public:
    explicit ActionScheduler(WallClock clock = systemTicks);
    virtual ~ActionScheduler();
    ActionScheduler(const ActionScheduler&) = delete;
    ActionScheduler& operator=(const ActionScheduler&) = delete;

    /// Blocks in the scheduler's loop until stop; returns at once when it is started already. `period` is kept
    /// by reference and read at each tick, so the caller's variable must outlive the call. The first round comes
    /// at once when `immediately` is set, otherwise after a period. After a stop it returns at once.
    virtual void start(const std::chrono::milliseconds& period, bool immediately);
    void start(std::chrono::milliseconds&& period, bool immediately) = delete;
    /// Ends start once the current action has returned. It stays stopped.
    virtual void stop();
    /// Adds a periodic action. A null one is logged and dropped.
    virtual void addTask(const std::shared_ptr<ActionBase>& action);
    /// Runs the action once, after the delay. Refused with a log line for null and while not enabled.
    virtual void runOnce(const std::shared_ptr<ActionBase>& action, std::chrono::milliseconds delay);
    /// Drops one-shot actions that have not begun; gives their number.
    virtual std::size_t cancelOneTimeTasks();
    /// To be called after the computer has slept: what fell due meanwhile runs now.
    virtual void onResume();
    /// While not enabled, ticks do nothing and runOnce refuses. One-shot actions already queued still run.
    virtual void setEnabled(bool value);
    virtual bool isStarted() const;

private:
    void onTimeout(const std::chrono::milliseconds& period, bool immediately);
    void callTasks();

    const std::string m_oneTimeTaskName = "OneTimeTask";
    Vx::TaskScheduler m_taskScheduler;
    std::vector<std::shared_ptr<ActionBase>> m_actions; ///< guarded by m_actionsMutex
    sync::Mutex m_actionsMutex;
    bool m_enabled = true;  ///< guarded by m_enabledMutex
    bool m_started = false; ///< guarded by m_startMutex
    mutable sync::RecursiveMutex m_startMutex;
    sync::Mutex m_enabledMutex;
};

} // namespace vx::tarn
