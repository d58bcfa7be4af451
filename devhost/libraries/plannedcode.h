#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace devhost {

/// The code that "LIBRARY::FUNCTION" is to give and do nothing, used up by this call; nothing when none is planned, or
/// the plan can't be read.
std::optional<std::int32_t> plannedCode(std::string_view call) noexcept;

} // namespace devhost
