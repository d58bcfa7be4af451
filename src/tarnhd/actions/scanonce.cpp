#include "tarnhd/actions/scanonce.h"

#include "common/settings/tarnpatchsettings.h"
#include "common/updaterlauncher/iupdaterlauncher.h"
#include "logging/logstream.h"

namespace vx::tarn {

using logging::Level;
using logging::LogStream;

ScanOnce::ScanOnce(
    common::CommonFactory* commonFactory, const TarnpatchSettings* settings, Ticks startTime, WallClock now)
    : Action(commonFactory, settings), m_startTime(startTime), m_now(std::move(now))
{}

common::ExitStatus ScanOnce::execute()
{
    VX_LOG_SCOPE();
    if (m_settings->installation.completion.wait())
        LogStream(Level::Info) << "Waiting for deploy complete";
    else if (m_now() < m_startTime)
        LogStream(Level::Info) << "Task time is not come yet";
    else
        m_updaterLauncher->startScan();
    return common::exitstatus::success;
}

} // namespace vx::tarn
