#include "tarnhd/actions/startupdeploywatchdog.h"

#include "common/settings/tarnpatchsettings.h"
#include "logging/logstream.h"

namespace vx::tarn {

using logging::Level;
using logging::LogStream;

StartupDeployWatchdog::StartupDeployWatchdog(common::CommonFactory* commonFactory, const TarnpatchSettings* settings)
    : StartupAction(commonFactory, settings)
{
    if (!isDeployInProgress()) {
        LogStream(Level::Info) << "Deploy isn't in progress.";
        return;
    }
    m_timeoutMinutes = static_cast<std::int32_t>(m_settings->installation.completion.timeout().count());
    m_waitTimestamp = deployTimestamp();
    LogStream(Level::Info) << "Start wait for deploy complete with timeout of '" << m_timeoutMinutes
                           << " minutes' and wait for deploy timestamp is '" << m_waitTimestamp << "'.";
}

bool StartupDeployWatchdog::isDeployInProgress() const
{
    return m_settings->installation.completion.wait() || m_settings->installation.inProgress();
}

Ticks StartupDeployWatchdog::deployTimestamp() const
{
    return saturatingMultiply(m_settings->installation.completion.timestamp(), ticksPerSecond);
}

std::chrono::milliseconds StartupDeployWatchdog::getDelay()
{
    VX_LOG_SCOPE();
    return std::chrono::minutes(m_timeoutMinutes);
}

common::ExitStatus StartupDeployWatchdog::execute()
{
    VX_LOG_SCOPE();
    if (!isDeployInProgress()) {
        LogStream(Level::Info) << "Deploy already completed";
    } else if (deployTimestamp() != m_waitTimestamp) {
        LogStream(Level::Info) << "New deploy was started";
    } else {
        LogStream(Level::Info) << "Reset wait for deploy complete settings";
        m_settings->installation.completion.wait.set(false);
        m_settings->installation.inProgress.set(false);
    }
    return common::exitstatus::success;
}

} // namespace vx::tarn
