#pragma once

#include <chrono>

namespace vx::tarn::common {
class CommonFactory;
class Event;
class IPatchStorage;
class IUpdaterLauncher;
} // namespace vx::tarn::common

namespace vx::tarn {

class TarnpatchManager;
class TarnpatchSettings;

/// Looks for a deployment that went on across a reboot and has finished, and has the agent complete it. Borrows all
/// that it is given. One thread.
class DeploymentWatcher {
public:
    DeploymentWatcher(common::CommonFactory& commonFactory, const TarnpatchSettings& settings,
        TarnpatchManager& manager, common::IUpdaterLauncher& updaterLauncher, const common::Event& stopEvent);

    /// Looks once a second until it has found one or the stop event is set. A round that fails is logged.
    void waitPostRebootDeployCompleted();

private:
    /// False when it is too early: no finished deployment, or an agent runs.
    bool completeFinishedDeployment(common::IPatchStorage& storage);

    common::CommonFactory& m_commonFactory;
    const TarnpatchSettings& m_settings;
    TarnpatchManager& m_manager;
    common::IUpdaterLauncher& m_updaterLauncher;
    const common::Event& m_stopEvent;
};

} // namespace vx::tarn
