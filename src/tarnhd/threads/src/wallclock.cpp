#include "tarnhd/wallclock.h"

#include <chrono>
#include <ratio>

namespace vx::tarn {

Ticks systemTicks()
{
    using TickDuration = std::chrono::duration<Ticks, std::ratio<1, ticksPerSecond>>;
    return std::chrono::duration_cast<TickDuration>(std::chrono::system_clock::now().time_since_epoch()).count();
}

} // namespace vx::tarn
