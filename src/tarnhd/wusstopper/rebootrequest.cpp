#include "tarnhd/wusstopper/rebootrequest.h"

namespace vx::tarn {

Ticks RebootRequest::deadline() const noexcept
{
    return saturatingAdd(initiated, saturatingMultiply(forceTime.count(), ticksPerSecond));
}

bool RebootRequest::isDue(Ticks now) const noexcept
{
    return initiated != 0 && deadline() < now;
}

} // namespace vx::tarn
