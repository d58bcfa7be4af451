#include "tarnhd/autoinstallation/autoinstallation.h"

#include "common/utils/productplaces.h"
#include "tarnhd/autoinstallation/schedule.h"
#include "tarnhd/scheduler/scheduler.h"
#include "tarnhd/scheduler/task.h"
#include "tarnhd/scheduler/trigger.h"
#include "vxtl/guarded.h"
#include "vxtl/registry.h"

#include <algorithm>
#include <filesystem>
#include <mutex>

namespace vx::tarn {

using logging::Level;
using logging::LogStream;
using scheduler::DailyTrigger;
using scheduler::Scheduler;
using scheduler::Task;
using scheduler::Trigger;
using scheduler::WeeklyTrigger;

namespace {

std::wstring agentPath(const registry::Registry& registry)
{
    const auto key = registry.openKey(common::installationKey);
    return (std::filesystem::path(key->getStringValue(common::installationDirectory)) / L"tarnag.exe").wstring();
}

std::shared_ptr<Trigger> makeDailyTrigger(Ticks now)
{
    LogStream(Level::Info) << "Set every day trigger";
    auto trigger = std::make_shared<DailyTrigger>(now, now);
    trigger->setDaysInterval(1);
    return trigger;
}

std::shared_ptr<Trigger> makeWeeklyTrigger(FrequencyItem frequency, Ticks now)
{
    LogStream(Level::Info) << "Set weekly trigger";
    const std::int32_t day = dayOfWeekOf(frequency);
    if (day == 0) {
        LogStream(Level::Error) << "Failed to get day of week. Frequency is " << static_cast<std::int32_t>(frequency);
        return nullptr;
    }
    auto trigger = std::make_shared<WeeklyTrigger>(now, now);
    trigger->setWeeksInterval(1);
    trigger->setDaysOfWeek({day});
    return trigger;
}

} // namespace

std::shared_ptr<Trigger> makeTrigger(FrequencyItem frequency, Ticks now)
{
    auto trigger = frequency == FrequencyItem::EveryDay ? makeDailyTrigger(now) : makeWeeklyTrigger(frequency, now);
    if (trigger)
        trigger->setEndless(true);
    return trigger;
}

AutoInstallation::AutoInstallation(std::wstring taskName, MakeScheduler makeScheduler,
    const TarnpatchSettings& settings, const TarnpatchStatus& status, std::shared_ptr<registry::Registry> registry,
    WallClock now)
    : m_taskName(std::move(taskName)), m_makeScheduler(std::move(makeScheduler)), m_settings(settings),
      m_status(status), m_registry(std::move(registry)), m_now(std::move(now))
{}

AutoInstallation::~AutoInstallation() = default;

bool AutoInstallation::update()
{
    VX_LOG_SCOPE();
    return guarded("Exception caught: ", [this] {
        const std::lock_guard lock(m_mutex);
        return updateTask();
    });
}

bool AutoInstallation::updateTask()
{
    const bool enabled = m_status.enabled();
    const ModeItem mode = m_settings.installation.automatic.mode();
    if (enabled && mode != ModeItem::Disable) {
        LogStream(Level::Info) << "Scheduler task will be created.";
        return createTask(mode);
    }
    LogStream(Level::Info) << "Scheduler task will be removed.";
    return removeTask();
}

std::shared_ptr<Scheduler> AutoInstallation::createScheduler()
{
    auto scheduler = m_makeScheduler();
    if (scheduler->Initialize())
        return scheduler;
    LogStream(Level::Error) << "Scheduler not initialized.";
    return nullptr;
}

bool AutoInstallation::createTask(ModeItem mode)
{
    VX_LOG_SCOPE();
    const auto scheduler = createScheduler();
    if (!scheduler) {
        LogStream(Level::Error) << "Failed to create a scheduler.";
        return false;
    }
    const FrequencyItem frequency = m_settings.installation.automatic.frequency();
    const auto task = obtainTask(*scheduler);
    if (!task || !setAction(*task, mode))
        return false;
    if (!setTriggers(*task, frequency)) {
        LogStream(Level::Error) << "Failed to set the task triggers.";
        return false;
    }
    if (!task->setStartWhenAvailable(true)) {
        LogStream(Level::Error) << "Failed to set \"Start when available\" flag";
        return false;
    }
    if (!task->save({}, {})) {
        LogStream(Level::Error) << "Failed to save the task.";
        return false;
    }
    LogStream(Level::Info) << "The task has been created successfully.";
    return true;
}

std::shared_ptr<Task> AutoInstallation::obtainTask(Scheduler& scheduler)
{
    std::shared_ptr<Task> task;
    if (scheduler.hasTask(m_taskName)) {
        LogStream(Level::Info) << "Scheduler task \"" << m_taskName << "\" already exists.";
        task = scheduler.getTask(m_taskName);
    } else {
        LogStream(Level::Info) << "Scheduler task \"" << m_taskName << "\" doesn't exist. It will be created.";
        task = scheduler.createTask(m_taskName);
    }
    if (task)
        LogStream(Level::Info) << "Scheduler task \"" << m_taskName << "\" has been obtained.";
    else
        LogStream(Level::Error) << "Failed to obtain a scheduler task \"" << m_taskName << "\".";
    return task;
}

bool AutoInstallation::setAction(Task& task, ModeItem mode)
{
    const std::wstring path = agentPath(*m_registry);
    if (!task.setActionPath(path)) {
        LogStream(Level::Error) << "Failed to set task command: " << path;
        return false;
    }
    const std::wstring severity = severityOf(mode);
    if (severity.empty()) {
        LogStream(Level::Error) << "Failed to set the task parameters. Severity is empty.";
        return false;
    }
    if (!task.setActionArguments(L"--command=queue --severity=" + severity)) {
        LogStream(Level::Error) << "Failed to set the task parameters.";
        return false;
    }
    return true;
}

bool AutoInstallation::setTriggers(Task& task, FrequencyItem frequency)
{
    const Ticks now = m_now();
    const auto trigger = makeTrigger(frequency, now);
    if (!trigger) {
        LogStream(Level::Error) << "Failed to create a trigger.";
        return false;
    }
    trigger->setStartBoundary(startBoundaryOf(now, m_settings.installation.automatic.hour()));
    if (!task.setTriggers({trigger})) {
        LogStream(Level::Error) << "Failed to set triggers.";
        return false;
    }
    return true;
}

bool AutoInstallation::removeTask()
{
    VX_LOG_SCOPE();
    const auto scheduler = createScheduler();
    if (!scheduler) {
        LogStream(Level::Error) << "Failed to create a scheduler.";
        return false;
    }
    if (std::ranges::count(scheduler->getTaskNames(), m_taskName) == 0) {
        LogStream(Level::Info) << "Can't remove task with task name \"" << m_taskName << "\". The task isn't exists.";
        return true;
    }
    if (!scheduler->deleteTask(m_taskName)) {
        LogStream(Level::Error) << "Failed to remove task with name \"" << m_taskName << "\".";
        return false;
    }
    return true;
}

} // namespace vx::tarn
