#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <string_view>

namespace vx {

/// How many arrays and objects may lie in one another in what parseJson takes. A JSON value is copied, compared and
/// written by recursion, so a short text could use up a thread's stack.
inline constexpr std::size_t deepestJson = 100;

/// Parses UTF-8 text that others wrote. Throws the JSON library's errors, and its parse error for text that goes
/// deeper than deepestJson. Any thread.
nlohmann::json parseJson(std::string_view text);

} // namespace vx
