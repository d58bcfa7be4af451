#pragma once

#include "tarnhd/wallclock.h"

#include <atomic>
#include <chrono>

namespace support {

/// A clock that a test sets.
struct FakeClock {
    std::atomic<vx::tarn::Ticks> now{1'000'000'000'000};

    vx::tarn::WallClock function()
    {
        return [this] { return now.load(); };
    }
    void advance(std::chrono::milliseconds by) { now += by.count() * vx::tarn::ticksPerMillisecond; }
};

} // namespace support
