#pragma once

#include "common/timeout/itimeout.h"

#include <cstdint>
#include <random>

namespace vx::tarn::common {

/// Delays that double from `initialDelay` on, each with a random part of 1 to 10000 ms, none above an hour.
/// The first delay is 0. One thread.
class ExpBackoffTimeout : public ITimeout {
public:
    /// Milliseconds.
    explicit ExpBackoffTimeout(std::uint64_t initialDelay);

    std::int64_t next() override;

private:
    std::uint64_t doubledBase() const;

    std::mt19937 m_random;
    std::uint64_t m_current = 0;
    std::uint16_t m_count = 0;
    const std::uint64_t m_base;
    const std::uint64_t m_limit = 3'600'000;
    const double m_jitterLow = 1.0;
    const double m_jitterHigh = 10'000.0;
};

} // namespace vx::tarn::common
