#pragma once

#include <cstdint>

namespace vx::tarn::common {

/// Generator of back-off delays.
class ITimeout {
public:
    virtual ~ITimeout() = default;
    /// The next delay in milliseconds.
    virtual std::int64_t next() = 0;
};

} // namespace vx::tarn::common
