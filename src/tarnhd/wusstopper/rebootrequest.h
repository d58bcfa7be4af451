#pragma once

#include "vxtl/clock.h"

#include <chrono>

namespace vx::tarn {

/// Since when a reboot is wanted, and how long it may take until it is forced. A value.
struct RebootRequest {
    Ticks initiated = 0; ///< 0: none is wanted
    std::chrono::seconds forceTime{};

    Ticks deadline() const noexcept;
    /// The deadline itself is still in time.
    bool isDue(Ticks now) const noexcept;
};

} // namespace vx::tarn
