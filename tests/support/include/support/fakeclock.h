#pragma once

#include "vxtl/clock.h"

#include <atomic>
#include <chrono>

namespace support {

/// A clock that a test sets.
struct FakeClock {
    std::atomic<vx::Ticks> now{1'000'000'000'000};

    vx::WallClock function()
    {
        return [this] { return now.load(); };
    }
    void advance(std::chrono::milliseconds by) { now += by.count() * vx::ticksPerMillisecond; }
};

} // namespace support
