#pragma once

#include <string>
#include <string_view>

namespace vx::logging::details {

/// Appends wide text as UTF-8. Text that can't be converted leaves "[UTF8_FAIL]" and its raw bytes.
void appendUtf8(std::string& target, std::wstring_view text);

/// Appends narrow text of others as UTF-8: as it is when it is UTF-8, otherwise out of the system's code page.
void appendForeign(std::string& target, std::string_view text);

} // namespace vx::logging::details
