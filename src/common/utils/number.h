#pragma once

#include <cstdint>
#include <string>

namespace vx::tarn::common::utils {

/// The decimal number at the beginning of a text; white space before it, a sign, and what stands behind it are
/// accepted. Throws std::invalid_argument "invalid stoi argument" for a text without digits, std::out_of_range "stoi
/// argument out of range" for a number too large. Any thread.
std::int32_t toInt32(const std::wstring& text);
/// The same with 64 bits and the word "stoll".
std::int64_t toInt64(const std::wstring& text);

} // namespace vx::tarn::common::utils
