#include "common/timeout/expbackofftimeout.h"

#include <algorithm>
#include <limits>

namespace vx::tarn::common {

ExpBackoffTimeout::ExpBackoffTimeout(std::uint64_t initialDelay)
    : m_random(std::random_device{}()), m_base(initialDelay)
{}

std::int64_t ExpBackoffTimeout::next()
{
    if (m_count > 0) {
        const double r = std::generate_canonical<double, 53>(m_random);
        const double jitter = m_jitterLow + r * (m_jitterHigh - m_jitterLow);
        m_current = std::min(doubledBase() + static_cast<std::uint64_t>(jitter), m_limit);
    }
    if (m_count < std::numeric_limits<std::uint16_t>::max())
        ++m_count;
    return static_cast<std::int64_t>(m_current);
}

// Bits that a shift would push out must not make the delay short again.
std::uint64_t ExpBackoffTimeout::doubledBase() const
{
    const int shift = std::min(m_count - 1, 63);
    return m_base > (m_limit >> shift) ? m_limit : m_base << shift;
}

} // namespace vx::tarn::common
