#include "common/settings/installationsettings.h"

namespace vx::tarn {

std::chrono::seconds RebootSettings::forcedDelay() const
{
    static constexpr std::chrono::seconds notSet(-1);
    const std::chrono::seconds delay = forceInSeconds();
    return delay == notSet ? forceIn() : delay;
}

} // namespace vx::tarn
