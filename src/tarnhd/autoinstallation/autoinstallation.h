#pragma once

#include "common/settings/tarnpatchsettings.h"
#include "common/settings/tarnpatchstatus.h"
#include "vxtl/clock.h"
#include "vxtl/lock.h"

#include <functional>
#include <memory>
#include <string>

namespace vx::registry {
class Registry;
}
namespace vx::scheduler {
class Scheduler;
class Task;
class Trigger;
} // namespace vx::scheduler

namespace vx::tarn {

/// The name of the task.
inline constexpr wchar_t automaticInstallationTask[] = L"Vantorix Tarnpatch Automatic Installation";

/// Keeps one task of the Task Scheduler in step with the settings: while the product and its automatic installation are
/// on, the agent is started at the chosen hour. The Task Scheduler is the only state. Any thread of a process that has
/// the multithreaded apartment; concurrent updates take turns, so the last one sees the last change.
class AutoInstallation {
public:
    using MakeScheduler = std::function<std::shared_ptr<scheduler::Scheduler>()>;

    AutoInstallation(std::wstring taskName, MakeScheduler makeScheduler, const TarnpatchSettings& settings,
        const TarnpatchStatus& status, std::shared_ptr<registry::Registry> registry, WallClock now = systemTicks);
    AutoInstallation(const AutoInstallation&) = delete;
    AutoInstallation& operator=(const AutoInstallation&) = delete;
    virtual ~AutoInstallation();

    /// Makes the task anew, or removes it. True when the Task Scheduler then has what the settings say; a failure is
    /// logged, and the next update begins from the start. Blocks for as long as store and Task Scheduler take.
    virtual bool update();

private:
    bool updateTask();
    std::shared_ptr<scheduler::Scheduler> createScheduler();
    bool createTask(ModeItem mode);
    std::shared_ptr<scheduler::Task> obtainTask(scheduler::Scheduler& scheduler);
    bool setAction(scheduler::Task& task, ModeItem mode);
    bool setTriggers(scheduler::Task& task, FrequencyItem frequency);
    bool removeTask();

    const std::wstring m_taskName;
    const MakeScheduler m_makeScheduler;
    const TarnpatchSettings m_settings;
    const TarnpatchStatus m_status;
    const std::shared_ptr<registry::Registry> m_registry;
    const WallClock m_now;
    sync::Mutex m_mutex; ///< held during an update
};

/// An endless trigger of the frequency with both boundaries at `now`. None for a frequency that is none, which is
/// logged.
std::shared_ptr<scheduler::Trigger> makeTrigger(FrequencyItem frequency, Ticks now);

} // namespace vx::tarn
