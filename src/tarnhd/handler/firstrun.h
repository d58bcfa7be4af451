#pragma once

namespace vx::tarn::common {
class CommonFactory;
}

namespace vx::tarn {

class ActionScheduler;
class TarnpatchSettings;
class TarnpatchStatus;
class WUSStopper;

/// What is due at the plug-in's first run after a boot, and only then. Borrows all that it is given.
class FirstRun {
public:
    FirstRun(common::CommonFactory& commonFactory, const TarnpatchSettings& settings, const TarnpatchStatus& status,
        ActionScheduler& scheduler, WUSStopper& wusStopper);

    /// Does nothing in a later run. Throws what the store throws; the next run is then the first one still.
    void process();

private:
    void scheduleActions();

    common::CommonFactory& m_commonFactory;
    const TarnpatchSettings& m_settings;
    const TarnpatchStatus& m_status;
    ActionScheduler& m_scheduler;
    WUSStopper& m_wusStopper;
};

} // namespace vx::tarn
