#include "vxtl/clock.h"

#include <gtest/gtest.h>

namespace vx {
namespace {

constexpr Ticks most = std::numeric_limits<Ticks>::max();
constexpr Ticks least = std::numeric_limits<Ticks>::min();

static_assert(saturatingAdd(most, 1) == most && saturatingAdd(least, -1) == least && saturatingAdd(least, most) == -1);
static_assert(saturatingSubtract(0, least) == most && saturatingSubtract(-2, most) == least &&
              saturatingSubtract(least, 1) == least && saturatingSubtract(least, least) == 0);
static_assert(saturatingMultiply(most, -2) == least && saturatingMultiply(least, -1) == most &&
              saturatingMultiply(most / ticksPerSecond, ticksPerSecond) <= most);

TEST(Clock, countsTheSameTimeFromItsEpochs)
{
    const Ticks from = systemTicks();
    const auto begin = uptime();
    while (uptime() - begin < std::chrono::milliseconds(50)) {
    }
    const Ticks passed = systemTicks() - from;
    EXPECT_GE(passed, 20 * ticksPerMillisecond);
    EXPECT_LT(passed, 60 * ticksPerSecond);
    EXPECT_GT(from, 1'700'000'000 * ticksPerSecond);
    EXPECT_LT(from, 4'000'000'000 * ticksPerSecond);
}

} // namespace
} // namespace vx
