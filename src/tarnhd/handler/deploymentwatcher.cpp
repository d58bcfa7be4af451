#include "tarnhd/handler/deploymentwatcher.h"

#include "common/event/event.h"
#include "common/factory/commonfactory.h"
#include "common/patchstorage/ipatchstorage.h"
#include "common/settings/tarnpatchsettings.h"
#include "common/updaterlauncher/iupdaterlauncher.h"
#include "tarnhd/manager/tarnpatchmanager.h"
#include "vxtl/guarded.h"

namespace vx::tarn {

using logging::Level;
using logging::LogStream;

namespace {

constexpr unsigned long pollPauseMs = 1000;

} // namespace

DeploymentWatcher::DeploymentWatcher(common::CommonFactory& commonFactory, const TarnpatchSettings& settings,
    TarnpatchManager& manager, common::IUpdaterLauncher& updaterLauncher, const common::Event& stopEvent)
    : m_commonFactory(commonFactory), m_settings(settings), m_manager(manager), m_updaterLauncher(updaterLauncher),
      m_stopEvent(stopEvent)
{}

void DeploymentWatcher::waitPostRebootDeployCompleted()
{
    // The log knows it as the handler's.
    const logging::LogScope scope("vx::tarn::TarnHandler::waitPostRebootDeployCompleted");
    const auto storage = m_commonFactory.createPatchStorage();
    bool completed = false;
    while (!completed) {
        if (sync::waitForSingleObject(m_stopEvent, pollPauseMs)) {
            LogStream(Level::Info) << "waitPostRebootDeployCompleted: Stop event has been signaled";
            return;
        }
        guarded("Failed to complete a deployment: ", [&] { completed = completeFinishedDeployment(*storage); });
    }
}

bool DeploymentWatcher::completeFinishedDeployment(common::IPatchStorage& storage)
{
    if (!storage.isInstallationFinished() || !storage.hasPatchStates())
        return false;
    LogStream(Level::Info) << "waitPostRebootDeployCompleted: Found that installation has been finished.";
    if (m_manager.isAgentRunning()) {
        LogStream(Level::Info) << "waitPostRebootDeployCompleted: Agent is already running. Waiting for be finished.";
        return false;
    }
    m_settings.installation.completion.wait.set(false);
    m_settings.installation.inProgress.set(false);
    m_manager.update();
    m_manager.setArguments(L"-c complete");
    m_updaterLauncher.startScan();
    return true;
}

} // namespace vx::tarn
