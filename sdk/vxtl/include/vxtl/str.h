#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vx::str {

/// Converts to the system's narrow code page (CP_ACP). Throws BaseException on a text above
/// 0x7FFFFFFF characters and Win32Exception when the system refuses it.
std::string toMultibyte(std::wstring_view text);
/// The way back, with the same failures.
std::wstring toUnicode(std::string_view text);

/// UTF-8 both ways, for store values and logs. Throws Win32Exception on text that is not valid.
std::string toUtf8(std::wstring_view text);
std::wstring fromUtf8(std::string_view text);
/// U+FFFD stands for what is not valid. Throws BaseException on a text above 0x7FFFFFFF characters.
std::string toUtf8Lossy(std::wstring_view text);
std::wstring fromUtf8Lossy(std::string_view text);

inline constexpr std::wstring_view whiteSpace = L" \t\r\n";

/// Cuts the characters off both ends.
std::wstring trim(std::wstring_view text, std::wstring_view characters = whiteSpace);
/// Cuts at each separator and trims each piece; empty pieces stay.
std::vector<std::wstring> split(std::wstring_view text, wchar_t separator);

} // namespace vx::str
