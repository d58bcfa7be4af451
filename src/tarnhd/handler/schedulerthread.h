#pragma once

#include "tarnhd/threads/joinedthread.h"

#include <chrono>

namespace vx::tarn {

class ActionScheduler;

/// The thread that all actions run on. Destruction stops the scheduler and blocks until the current action has
/// returned, so the thread is gone on every way out of its owner's scope.
class SchedulerThread {
public:
    /// `scheduler` is borrowed. The first round of actions comes at once.
    SchedulerThread(ActionScheduler& scheduler, std::chrono::milliseconds period);
    ~SchedulerThread();
    SchedulerThread(const SchedulerThread&) = delete;
    SchedulerThread& operator=(const SchedulerThread&) = delete;

private:
    ActionScheduler& m_scheduler;
    const std::chrono::milliseconds m_period; ///< the scheduler keeps a reference to it
    JoinedThread m_thread;
};

} // namespace vx::tarn
