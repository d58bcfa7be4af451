#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <limits>

namespace vx {

/// Ticks of 100 nanoseconds since the Unix epoch, or a span of them.
using Ticks = std::int64_t;

inline constexpr Ticks ticksPerMillisecond = 10'000;
inline constexpr Ticks ticksPerSecond = 10'000'000;
/// The Unix epoch in ticks since 1601-01-01, where the system's file times begin.
inline constexpr Ticks unixEpochAsFileTime = 116'444'736'000'000'000;

/// Tells the time; called from any thread.
using WallClock = std::function<Ticks()>;

/// The system's wall clock. It runs on while the computer sleeps, and jumps when somebody sets it.
Ticks systemTicks() noexcept;

/// Since the system's start, for time-outs: it never jumps.
std::chrono::milliseconds uptime() noexcept;

/// Sums, differences and products that stop at the ends of the range: times come from settings and may be anything.
constexpr Ticks saturatingAdd(Ticks a, Ticks b) noexcept
{
    Ticks sum = 0;
    if (!__builtin_add_overflow(a, b, &sum))
        return sum;
    return b > 0 ? std::numeric_limits<Ticks>::max() : std::numeric_limits<Ticks>::min();
}

constexpr Ticks saturatingSubtract(Ticks a, Ticks b) noexcept
{
    Ticks difference = 0;
    if (!__builtin_sub_overflow(a, b, &difference))
        return difference;
    return b < 0 ? std::numeric_limits<Ticks>::max() : std::numeric_limits<Ticks>::min();
}

constexpr Ticks saturatingMultiply(Ticks a, Ticks b) noexcept
{
    Ticks product = 0;
    if (!__builtin_mul_overflow(a, b, &product))
        return product;
    return (a > 0) == (b > 0) ? std::numeric_limits<Ticks>::max() : std::numeric_limits<Ticks>::min();
}

} // namespace vx
