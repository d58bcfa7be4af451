#include "vxtl/clock.h"

namespace vx {

constexpr Ticks most = std::numeric_limits<Ticks>::max();
constexpr Ticks least = std::numeric_limits<Ticks>::min();

static_assert(saturatingAdd(most, 1) == most && saturatingAdd(least, -1) == least && saturatingAdd(least, most) == -1);
static_assert(saturatingSubtract(0, least) == most && saturatingSubtract(-2, most) == least &&
              saturatingSubtract(least, 1) == least && saturatingSubtract(least, least) == 0);
static_assert(saturatingMultiply(most, -2) == least && saturatingMultiply(least, -1) == most &&
              saturatingMultiply(most / ticksPerSecond, ticksPerSecond) <= most);

} // namespace vx
