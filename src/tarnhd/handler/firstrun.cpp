#include "tarnhd/handler/firstrun.h"

#include "common/factory/commonfactory.h"
#include "common/globalatom/iglobalatom.h"
#include "common/settings/tarnpatchsettings.h"
#include "common/settings/tarnpatchstatus.h"
#include "common/utils/objectnames.h"
#include "logging/logstream.h"
#include "tarnhd/actions/startupautoscan.h"
#include "tarnhd/actions/startupdeploywatchdog.h"
#include "tarnhd/actionscheduler/actionscheduler.h"
#include "tarnhd/wusstopper/wusstopper.h"

namespace vx::tarn {

using logging::Level;
using logging::LogStream;

FirstRun::FirstRun(common::CommonFactory& commonFactory, const TarnpatchSettings& settings,
    const TarnpatchStatus& status, ActionScheduler& scheduler, WUSStopper& wusStopper)
    : m_commonFactory(commonFactory), m_settings(settings), m_status(status), m_scheduler(scheduler),
      m_wusStopper(wusStopper)
{}

void FirstRun::process()
{
    // The log knows it as the handler's.
    const logging::LogScope scope("vx::tarn::TarnHandler::processFirstRun");
    const auto atom = m_commonFactory.createGlobalAtom(common::postRebootAtomName);
    if (atom->exists())
        return;
    LogStream(Level::Info) << "It's a first run after reboot.";
    m_wusStopper.cleanupStopFlag();
    scheduleActions();
    // Last: what failed above is tried again by the next run.
    atom->create();
}

void FirstRun::scheduleActions()
{
    const auto& lastInstallation = m_status.installation.lastInstallation;
    lastInstallation.restartComputerNeeded.set(false);
    const auto watchdog = std::make_shared<StartupDeployWatchdog>(&m_commonFactory, &m_settings);
    m_scheduler.runOnce(watchdog, watchdog->getDelay());
    if (lastInstallation.restartComputerNeeded() || m_settings.scanning.automatic.scanningOnSystemStartup.enabled()) {
        LogStream(Level::Info) << "Scan on startup";
        const auto scan = std::make_shared<StartupAutoScan>(&m_commonFactory, &m_settings);
        m_scheduler.runOnce(scan, scan->getDelay());
    } else {
        LogStream(Level::Info) << "Scan on startup is not enabled.";
    }
}

} // namespace vx::tarn
