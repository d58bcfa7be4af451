#pragma once

#include <cstdint>

namespace vx::tarn::common {

/// Whether `lastStart` + `seconds` lies before `now`; times in ticks of 100 ns. Exact for all arguments.
bool isStartOlderThan(std::int64_t lastStart, std::int64_t seconds, std::int64_t now) noexcept;

} // namespace vx::tarn::common
