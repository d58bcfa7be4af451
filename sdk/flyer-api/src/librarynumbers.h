#pragma once

#include <cstdint>

namespace vx::flyers {

/// The flyer library's number for one of this program's. Both throw std::bad_cast for a number that is none.
std::int32_t libraryFlyerType(std::int32_t type);
std::int32_t libraryActionType(std::int32_t type);

} // namespace vx::flyers
