#pragma once

#include <string>
#include <string_view>

namespace vx {

/// A URL, or a proxy's text, as a log may show it: "<password>" stands for each password, also of a URL that is
/// percent-encoded inside another. What can't be told from a password goes with it. Any thread.
std::wstring withoutPasswords(std::wstring_view url);

/// A block of header lines as a log may show it: "<hidden>" stands for the values of headers that log in or on.
std::wstring withoutCredentials(std::wstring_view headers);

} // namespace vx
