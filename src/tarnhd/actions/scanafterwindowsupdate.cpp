#include "tarnhd/actions/scanafterwindowsupdate.h"

#include "common/factory/commonfactory.h"
#include "common/updaterlauncher/iupdaterlauncher.h"
#include "common/windowsupdates/iwindowsupdates.h"
#include "logging/logstream.h"

namespace vx::tarn {

using logging::Level;
using logging::LogStream;

ScanAfterWindowsUpdate::ScanAfterWindowsUpdate(
    common::CommonFactory* commonFactory, const TarnpatchSettings* settings, WallClock now)
    : Action(commonFactory, settings), m_windowsUpdates(commonFactory->createWindowsUpdates()), m_now(std::move(now))
{}

common::ExitStatus ScanAfterWindowsUpdate::execute()
{
    VX_LOG_SCOPE();
    const Ticks date = m_windowsUpdates->getLastInstallationDate();
    if (date == common::neverInstalled) {
        LogStream(Level::Info) << "Windows update has never been installed";
        return common::exitstatus::success;
    }
    // Its last request older than this means older than the update.
    const std::int64_t age = saturatingSubtract(m_now(), date) / ticksPerSecond;
    LogStream(Level::Info) << "Trying to start scan after windows update if expired. Duration: " << age << " second(s)";
    m_updaterLauncher->startScanIfOlderThan(age);
    return common::exitstatus::success;
}

} // namespace vx::tarn
