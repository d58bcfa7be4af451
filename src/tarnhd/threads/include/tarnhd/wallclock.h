#pragma once

#include <cstdint>
#include <functional>

namespace vx::tarn {

/// Ticks of 100 nanoseconds since the Unix epoch.
using Ticks = std::int64_t;

inline constexpr Ticks ticksPerMillisecond = 10'000;
inline constexpr Ticks ticksPerSecond = 10'000'000;

/// Tells the time; called from any thread.
using WallClock = std::function<Ticks()>;

/// The system's wall clock. It runs on while the computer sleeps.
Ticks systemTicks();

} // namespace vx::tarn
