#pragma once

#include <string>
#include <string_view>

namespace vx::logging::details {

/// Appends wide text as UTF-8. Text that can't be converted leaves "[UTF8_FAIL]" and its raw bytes.
void appendUtf8(std::string& target, std::wstring_view text);

} // namespace vx::logging::details
