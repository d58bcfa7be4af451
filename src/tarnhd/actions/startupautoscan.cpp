#include "tarnhd/actions/startupautoscan.h"

#include "common/factory/commonfactory.h"
#include "common/settings/tarnpatchsettings.h"
#include "common/updaterlauncher/iupdaterlauncher.h"
#include "logging/logstream.h"

namespace vx::tarn {

using logging::Level;
using logging::LogStream;

namespace {

constexpr std::uint32_t largestRandom = 32767;

} // namespace

StartupAutoScan::StartupAutoScan(common::CommonFactory* commonFactory, const TarnpatchSettings* settings, WallClock now)
    : StartupAction(commonFactory, settings), m_now(std::move(now)), m_creationTime(m_now()),
      m_scanLauncher(commonFactory->createUpdaterLauncher())
{}

std::chrono::milliseconds StartupAutoScan::getDelay()
{
    VX_LOG_SCOPE();
    const auto& startup = m_settings->scanning.automatic.scanningOnSystemStartup;
    const std::int64_t delay = startup.delay().count();
    LogStream(Level::Info) << "Delay for rescan on startup is " << delay << " minute(s)";
    const std::int64_t interval = startup.randomizationInterval().count();
    LogStream(Level::Info) << "Randomization interval for rescan on startup is " << interval << " minute(s)";
    const auto delta =
        static_cast<std::int32_t>(static_cast<double>(interval) * (drawRandom() / static_cast<double>(largestRandom)));
    LogStream(Level::Info) << "Random delta for rescan on startup is " << delta << " minute(s)";
    const std::chrono::minutes total(delay + delta);
    LogStream(Level::Info) << "Total delay for rescan on startup is " << total.count() << " minute(s)";
    return total;
}

// The system's rand, whose state on a thread all modules of the host would share. Nothing seeds it, so the first number
// is always 41 and the delta 0 for intervals below 800 minutes. That is meant to stay.
std::uint32_t StartupAutoScan::drawRandom() noexcept
{
    m_random = m_random * 214'013 + 2'531'011;
    return m_random >> 16 & largestRandom;
}

common::ExitStatus StartupAutoScan::execute()
{
    VX_LOG_SCOPE();
    if (m_settings->installation.completion.wait()) {
        LogStream(Level::Info) << "Can't start after reboot scan: deploy is in progress";
        return common::exitstatus::success;
    }
    const std::int64_t age = (m_now() - m_creationTime) / ticksPerSecond;
    LogStream(Level::Info) << "Start after reboot scan if expired";
    m_scanLauncher->startScanIfOlderThan(age);
    return common::exitstatus::success;
}

} // namespace vx::tarn
