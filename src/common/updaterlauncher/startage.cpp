#include "common/updaterlauncher/startage.h"

#include "vxtl/clock.h"

namespace vx::tarn::common {

bool isStartOlderThan(std::int64_t lastStart, std::int64_t seconds, std::int64_t now) noexcept
{
    // The interval comes from a setting: neither its ticks nor the sum need fit 64 bits.
    std::int64_t due = 0;
    if (__builtin_mul_overflow(seconds, ticksPerSecond, &due) || __builtin_add_overflow(lastStart, due, &due))
        return seconds < 0;
    return due < now;
}

} // namespace vx::tarn::common
