// The change handlers of TarnHandler and the table that leads to them.

#include "tarnhd/handler/tarnhandler.h"

#include "common/deploymentqueue/ideploymentqueue.h"
#include "common/event/event.h"
#include "common/factory/commonfactory.h"
#include "common/settings/tarnpatchsettings.h"
#include "common/settings/tarnpatchstatus.h"
#include "common/updaterlauncher/iupdaterlauncher.h"
#include "logging/logstream.h"
#include "tarnhd/actions/scanonce.h"
#include "tarnhd/actionscheduler/actionscheduler.h"
#include "tarnhd/autoinstallation/autoinstallation.h"
#include "tarnhd/manager/tarnpatchmanager.h"
#include "tarnhd/recovery/recovery.h"
#include "tarnhd/startreasons/agentstartreason.h"
#include "tarnhd/subscriptions/subscriptions.h"

#include <mutex>
#include <nlohmann/json.hpp>

namespace vx::tarn {

using logging::Level;
using logging::LogStream;

namespace {

/// What a request that names no updates means.
std::wstring defaultTask(ModeItem mode)
{
    switch (mode) {
    case ModeItem::InstallAll: return L"all";
    case ModeItem::InstallCritical: return L"critical";
    case ModeItem::InstallCriticalAndImportant: return L"important";
    default: return {};
    }
}

} // namespace

std::unique_ptr<Subscriptions> TarnHandler::subscribeToChanges()
{
    VX_LOG_SCOPE();
    const auto setStatusChanged = [this] { m_statusChangedEvent->set(); };
    const auto updateTask = [this] { m_autoInstallation->update(); };
    const auto scan = [this] { startScan(); };
    const auto& remote = m_tarnpatchSettings->remoteOperations;
    // In the order of the keys.
    const ChangeAnswer answers[] = {
        {m_tarnpatchStatus->installation.log.entries.key(), setStatusChanged},
        {m_tarnpatchStatus->scanning.lastScanning.missingUpdates.key(), setStatusChanged},
        {m_tarnpatchSettings->enabled.key(), [this] { updateEnabledStatus(); }},
        {m_tarnpatchSettings->installation.automatic.frequency.key(), updateTask},
        {m_tarnpatchSettings->installation.automatic.hour.key(), updateTask},
        {m_tarnpatchSettings->installation.automatic.mode.key(), updateTask},
        {m_tarnpatchSettings->installation.completion.wait.key(), [this] { onPostRebootDeployCompleted(); },
            [this] { catchUpWithDeployment(); }},
        {m_tarnpatchSettings->installation.deploymentQueue.key(), [this] { startDeploymentQueueInstallation(); }},
        {remote.installUpdates.start.key(), [this] { startInstallSignalChanged(); }, {},
            AgentStartReason::RemoteDeployment},
        {remote.scanForUpdates.start.key(), [this] { startScanSignalChanged(); }, {}, AgentStartReason::RemoteScan},
        {m_tarnpatchSettings->scanning.automatic.pollingInterval.key(), [this] { setupActionScheduler(); }},
        {m_tarnpatchSettings->scanning.excludeUpdatesByRule.key(), scan},
        {m_tarnpatchSettings->scanning.excludeUpdatesByType.key(), scan},
    };
    auto subscriptions = std::make_unique<Subscriptions>(m_settings.get());
    for (const ChangeAnswer& change : answers)
        if (m_recovery)
            m_recovery->subscribe(*subscriptions, change);
        else
            subscriptions->subscribe(change.key, [handler = change.answer](const std::wstring&) { handler(); });
    return subscriptions;
}

void TarnHandler::setupActionScheduler()
{
    VX_LOG_SCOPE();
    const auto interval = m_tarnpatchSettings->scanning.automatic.pollingInterval();
    LogStream(Level::Info) << "Setup action scheduler. Polling interval: " << interval.count() << " minute(s)";
    const std::chrono::milliseconds period = interval;
    // A started scheduler keeps its period. One that is not would take this thread for its loop.
    if (m_actionScheduler->isStarted())
        m_actionScheduler->start(period, true);
}

void TarnHandler::updateEnabledStatus()
{
    VX_LOG_SCOPE();
    // run at its start and a change that comes meanwhile: whoever has read first must not write last.
    const std::lock_guard lock(m_switchMutex);
    const bool wasEnabled = m_tarnpatchStatus->enabled();
    const bool enable = m_tarnpatchSettings->enabled();
    LogStream(Level::Info) << "Tarnpatch enabled status: wasEnabled = " << wasEnabled << ", enable = " << enable;
    m_tarnpatchStatus->enabled.set(enable);
    m_autoInstallation->update();
    m_manager->update();
    m_actionScheduler->setEnabled(enable);
    if (wasEnabled && !enable)
        m_tarnpatchStatus->scanning.lastScanning.missingUpdates.set(nlohmann::json::array());
    if (enable && !wasEnabled)
        m_actionScheduler->runOnce(
            std::make_shared<ScanOnce>(m_commonFactory.get(), m_tarnpatchSettings.get(), systemTicks()),
            std::chrono::milliseconds(0));
}

void TarnHandler::startScan()
{
    VX_LOG_SCOPE();
    LogStream(Level::Info) << "tarnag.exe start requested";
    m_updaterLauncher->startScan();
}

void TarnHandler::startScanSignalChanged()
{
    VX_LOG_SCOPE();
    const auto& request = m_tarnpatchSettings->remoteOperations.scanForUpdates;
    const auto start = request.start();
    const auto ack = request.ack();
    if (start == ack) {
        LogStream(Level::Info) << "No need to start scanning. start=" << start << ", ack=" << ack;
    } else if (m_tarnpatchStatus->enabled()) {
        // The manager acknowledges when the agent has finished.
        m_manager->setStartReason(AgentStartReason::RemoteScan);
        m_updaterLauncher->startScan();
    } else {
        LogStream(Level::Error) << "Can't start tarnag.exe for a remote scan: Tarnpatch is disabled.";
        request.ack.set(start);
    }
}

void TarnHandler::startInstallSignalChanged()
{
    VX_LOG_SCOPE();
    const auto& request = m_tarnpatchSettings->remoteOperations.installUpdates;
    const auto start = request.start();
    const auto ack = request.ack();
    if (start == ack) {
        LogStream(Level::Info) << "No need to start deploying. start=" << start << ", ack=" << ack;
        return;
    }
    // Stands until the manager knows better, also when something goes wrong below.
    request.result.set(ResultItem::Failed);
    if (!m_tarnpatchStatus->enabled()) {
        LogStream(Level::Error) << "Can't start tarnag.exe for a remote installation: Tarnpatch is disabled.";
        finishRemoteInstall(ResultItem::Failed);
        return;
    }
    std::wstring task = request.updatesToInstall();
    if (task.empty())
        task = defaultTask(m_tarnpatchSettings->installation.automatic.mode());
    if (task.empty()) {
        LogStream(Level::Warning) << "Deployment task with empty scope was not started.";
        finishRemoteInstall(ResultItem::Success);
        return;
    }
    m_deploymentQueue->pushBack(task);
    LogStream(Level::Info) << "Deployment task was put to the queue. '" << task << "'.";
    // The manager acknowledges when the agent has finished.
    m_manager->setStartReason(AgentStartReason::RemoteDeployment);
    m_updaterLauncher->startScan();
}

void TarnHandler::finishRemoteInstall(ResultItem result)
{
    const auto& request = m_tarnpatchSettings->remoteOperations.installUpdates;
    const auto start = request.start();
    request.result.set(result);
    request.ack.set(start);
}

void TarnHandler::startDeploymentQueueInstallation()
{
    VX_LOG_SCOPE();
    m_statusChangedEvent->set();
    if (m_tarnpatchSettings->installation.deploymentQueue().empty())
        LogStream(Level::Debug) << "No items in a deployment queue. No need to start tarnag.";
    else
        startScan();
}

void TarnHandler::onPostRebootDeployCompleted()
{
    VX_LOG_SCOPE();
    m_actionScheduler->cancelOneTimeTasks();
    m_manager->update();
    m_updaterLauncher->startScan();
}

// The manager shows what the last change that was seen said.
void TarnHandler::catchUpWithDeployment()
{
    const bool isAwaited = m_tarnpatchSettings->installation.completion.wait();
    if (m_tarnpatchStatus->enabled() && m_manager->isRunning() == isAwaited)
        onPostRebootDeployCompleted();
}

} // namespace vx::tarn
