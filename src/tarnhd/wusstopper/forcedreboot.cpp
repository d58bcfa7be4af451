#include "tarnhd/wusstopper/forcedreboot.h"

#include "common/reboot/icomputerrebooter.h"
#include "common/utils/timetext.h"
#include "tarnhd/wusstopper/rebootrequest.h"
#include "tarnhd/wusstopper/triggerkey.h"
#include "vxtl/guarded.h"
#include "vxtl/registry.h"

#include <utility>

namespace vx::tarn {

using logging::Level;
using logging::LogStream;

namespace {

std::wstring timeText(Ticks time)
{
    return common::utils::timeToString(time / ticksPerSecond);
}

} // namespace

ForcedReboot::ForcedReboot(const std::shared_ptr<settings::Settings>& settings,
    std::shared_ptr<registry::Registry> registry, std::shared_ptr<common::IComputerRebooter> rebooter, WallClock now)
    : m_settings(settings), m_registry(std::move(registry)), m_rebooter(std::move(rebooter)), m_now(std::move(now))
{}

bool ForcedReboot::handleForcedReboot()
{
    const bool askUser = m_settings.installation.reboot.askUser();
    const std::chrono::seconds forceTime = m_settings.installation.reboot.forcedDelay();
    LogStream(Level::Debug) << "force reboot ask: " << askUser << " in " << forceTime.count() << " hours";
    return !askUser && isNowTimeToReboot(forceTime) && performReboot();
}

bool ForcedReboot::isNowTimeToReboot(std::chrono::seconds forceTime)
{
    const RebootRequest request{getRebootIninitatedTime(), forceTime};
    LogStream(Level::Debug) << "reboot initiated " << timeText(request.initiated);
    if (request.initiated == 0)
        return false;
    const Ticks now = m_now();
    const bool isDue = request.isDue(now);
    const std::wstring deadlineText = timeText(request.deadline());
    const std::wstring nowText = timeText(now);
    LogStream(Level::Debug) << "reboot dealine " << deadlineText << " now " << nowText << " is time to reboot "
                            << isDue;
    if (isDue)
        LogStream(Level::Info) << "Now time to reboot: dealine " << deadlineText << " now " << nowText;
    return isDue;
}

Ticks ForcedReboot::getRebootIninitatedTime()
{
    Ticks time = 0;
    guarded([&] {
        const std::int64_t seconds = m_registry->openKey(triggerKey)->getInt64Value(triggerTimeValue);
        time = saturatingMultiply(seconds, ticksPerSecond);
    });
    return time;
}

bool ForcedReboot::performReboot()
{
    LogStream(Level::Info) << "Performing system to reboot";
    return m_rebooter->initiateReboot();
}

} // namespace vx::tarn
