#pragma once

#include "vxtl/clock.h"

#include <chrono>
#include <cstdint>
#include <string>

namespace vx::tarn::common {

/// When a reboot is forced that is asked for now: whole seconds since the Unix epoch.
std::int64_t restartForceTime(Ticks now, std::chrono::seconds forceTime);

/// The arguments of the host product's restart program.
std::wstring restartArguments(std::chrono::minutes postponeFor, std::int64_t forceAt);

} // namespace vx::tarn::common
