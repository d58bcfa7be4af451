#pragma once

#include "tarnhd/actionscheduler/task.h"
#include "vxtl/clock.h"
#include "vxtl/lock.h"

#include <chrono>
#include <cstddef>
#include <list>
#include <memory>
#include <random>
#include <string>

namespace Vx {

/// A timer queue: named one-shot tasks ordered by due time, and one loop that runs them. Tasks of equal due
/// time run in the order of scheduling. Any thread may call; run belongs to one thread at a time, and tasks
/// run on it without the lock, so they may schedule. Due times are wall-clock ticks of 100 nanoseconds since
/// the Unix epoch and saturate instead of overflowing.
class TaskScheduler {
public:
    /// `clock` is called under the lock, so it must not call back.
    explicit TaskScheduler(vx::WallClock clock = vx::systemTicks);
    virtual ~TaskScheduler();
    TaskScheduler(const TaskScheduler&) = delete;
    TaskScheduler& operator=(const TaskScheduler&) = delete;

    /// Queues the task for now + `delay` + a uniform random time from 0 to `randomRange`, both included, and
    /// gives the due time. A unique task replaces a queued one of its name when it is due earlier; otherwise
    /// it is dropped and the queued one's due time is given.
    virtual vx::Ticks schedule(
        std::unique_ptr<Task> task, std::chrono::milliseconds delay, std::chrono::milliseconds randomRange);
    /// Removes queued tasks of that name, the earliest first, at most `maxCount` unless that is 0. Gives the
    /// number removed. A task that is already running is not affected.
    virtual std::size_t cancel(const std::string& name, std::size_t maxCount);
    /// Puts every task that is due in less than `delay` off to now + `delay`, in unchanged order, and wakes
    /// the loop, which then reads the clock again. 0 does no more than that for overdue tasks.
    virtual void deferAtLeast(std::chrono::milliseconds delay);
    /// Blocks and runs due tasks until stop. What a task throws is logged at error level.
    virtual void run();
    /// Blocks until a task is due and gives it; null after stop.
    virtual std::unique_ptr<Task> takeNext();
    /// Ends run once the current task has returned. Queued tasks stay.
    virtual void stop();
    virtual bool isStopped() const;
    /// Drops all tasks and takes a stop back.
    virtual void restart();

private:
    struct Entry {
        vx::Ticks due;
        std::unique_ptr<Task> task;
    };
    using Entries = std::list<Entry>;

    vx::Ticks replaceUnique(Entries::iterator queued, Entries& fresh);
    vx::Ticks insert(Entries& fresh);
    std::chrono::milliseconds untilFirstDue() const;

    mutable vx::sync::Mutex m_mutex;
    vx::sync::ConditionVariable m_condition;
    Entries m_tasks;        ///< sorted by due time; guarded by m_mutex
    bool m_stopped = false; ///< guarded by m_mutex
    std::mt19937 m_random;  ///< guarded by m_mutex
    const vx::WallClock m_clock;
};

} // namespace Vx
