#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vx::registry::details {

/// A REG_MULTI_SZ value's characters as a list: each NUL ends a string, and the empty strings at the end,
/// at most two, are dropped. Those in the middle stay.
std::vector<std::wstring> splitMultiString(std::wstring_view data);

/// The way back: each string with its NUL, and a final one. Nothing at all for the empty list.
std::wstring joinMultiString(const std::vector<std::wstring>& list);

} // namespace vx::registry::details
