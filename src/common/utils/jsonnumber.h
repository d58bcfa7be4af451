#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>

namespace vx::tarn::common::utils {

/// A JSON number as an integer. A floating number is cut to one, and to the type's nearest where it lies beyond.
/// Anything but a number throws the JSON library's type error 302. Any thread.
std::int64_t readInt64(const nlohmann::json& value);
/// The same with 32 bits; a boolean counts as 0 or 1.
std::int32_t readInt32(const nlohmann::json& value);

} // namespace vx::tarn::common::utils
