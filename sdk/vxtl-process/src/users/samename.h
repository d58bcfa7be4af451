#pragma once

#include <string_view>

namespace vx::users {

/// Compares without case, by the system's own table and not by a language's rules.
bool isSameName(std::wstring_view left, std::wstring_view right);

} // namespace vx::users
