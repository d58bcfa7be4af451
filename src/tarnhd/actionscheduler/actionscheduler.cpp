#include "tarnhd/actionscheduler/actionscheduler.h"

#include "logging/logstream.h"
#include "vxtl/guarded.h"

namespace vx::tarn {

using logging::Level;
using logging::LogStream;

ActionScheduler::ActionScheduler(WallClock clock) : m_taskScheduler(std::move(clock)) {}

ActionScheduler::~ActionScheduler() = default;

void ActionScheduler::start(const std::chrono::milliseconds& period, bool immediately)
{
    VX_LOG_SCOPE();
    {
        const std::lock_guard lock(m_startMutex);
        if (isStarted())
            return;
        m_started = true;
    }
    // Without the lock, which a stop takes while this runs.
    onTimeout(period, immediately);
    m_taskScheduler.run();
}

void ActionScheduler::stop()
{
    VX_LOG_SCOPE();
    const std::lock_guard lock(m_startMutex);
    m_taskScheduler.stop();
    m_started = false;
}

void ActionScheduler::onTimeout(const std::chrono::milliseconds& period, bool immediately)
{
    VX_LOG_SCOPE();
    LogStream(Level::Debug) << "Period = " << period.count() << " milliseconds";
    // The period is that of start, which does not return before the last tick. The next tick is queued when this one
    // is over, so slow actions put it off and never pile up.
    auto tick = [this, &period] {
        callTasks();
        onTimeout(period, false);
    };
    m_taskScheduler.schedule(std::make_unique<Vx::FuncTask>("FuncTask", false, tick),
        immediately ? std::chrono::milliseconds(0) : period, std::chrono::milliseconds(0));
}

void ActionScheduler::callTasks()
{
    // Held over the actions: once setEnabled(false) has returned, no periodic one runs any more.
    const std::lock_guard enabledLock(m_enabledMutex);
    if (!m_enabled)
        return;
    const std::lock_guard actionsLock(m_actionsMutex);
    for (const auto& action : m_actions)
        guarded("Exception caught: ", [&] { action->execute(); });
}

void ActionScheduler::addTask(const std::shared_ptr<ActionBase>& action)
{
    VX_LOG_SCOPE();
    if (!action) {
        LogStream(Level::Warning) << "You can't add empty action.";
        return;
    }
    const std::lock_guard lock(m_actionsMutex);
    m_actions.push_back(action);
}

void ActionScheduler::runOnce(const std::shared_ptr<ActionBase>& action, std::chrono::milliseconds delay)
{
    VX_LOG_SCOPE();
    const std::lock_guard lock(m_enabledMutex);
    if (!action) {
        LogStream(Level::Warning) << "You can't add empty action.";
        return;
    }
    if (!m_enabled) {
        LogStream(Level::Info) << "Failed to run once a task because action scheduler isn't enabled.";
        return;
    }
    m_taskScheduler.schedule(
        std::make_unique<ActionNamedTask>(m_oneTimeTaskName, false, [action] { action->execute(); }), delay,
        std::chrono::milliseconds(0));
}

std::size_t ActionScheduler::cancelOneTimeTasks()
{
    VX_LOG_SCOPE();
    const std::size_t count = m_taskScheduler.cancel(m_oneTimeTaskName, 0);
    LogStream(Level::Debug) << "Canceled " << count << " task(s)";
    return count;
}

void ActionScheduler::onResume()
{
    VX_LOG_SCOPE();
    m_taskScheduler.deferAtLeast(std::chrono::milliseconds(0));
}

void ActionScheduler::setEnabled(bool value)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(value);
    const std::lock_guard lock(m_enabledMutex);
    m_enabled = value;
}

bool ActionScheduler::isStarted() const
{
    const std::lock_guard lock(m_startMutex);
    return m_started;
}

} // namespace vx::tarn
