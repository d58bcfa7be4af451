#include "tarnhd/actions/scanifexpired.h"

#include "common/settings/tarnpatchsettings.h"
#include "common/updaterlauncher/iupdaterlauncher.h"
#include "logging/logstream.h"

namespace vx::tarn {

using logging::Level;
using logging::LogStream;

common::ExitStatus ScanIfExpired::execute()
{
    VX_LOG_SCOPE();
    const std::chrono::hours period = m_settings->scanning.automatic.maximumRescanningPeriod();
    const std::int64_t seconds = std::chrono::seconds(period).count();
    LogStream(Level::Info) << "Tarnpatch maximum rescanning period is " << period.count() << " hours. It's " << seconds
                           << " seconds.";
    m_updaterLauncher->startScanIfOlderThan(seconds);
    return common::exitstatus::success;
}

} // namespace vx::tarn
