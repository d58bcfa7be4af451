#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <string_view>

namespace vx {

/// What a log may show of texts that may hold passwords. What can't be told from a password goes with it. Any thread.

/// A URL: "<password>" stands for each password, also of a URL that is percent-encoded inside another.
std::wstring withoutPasswords(std::wstring_view url);

/// A text that may be a proxy's. Its password may hold anything, so all from the first colon behind the scheme to the
/// last @ goes.
std::wstring withoutProxyPassword(std::wstring_view text);
/// The same for UTF-8.
std::string withoutProxyPassword(std::string_view text);
/// The same for each text in the value; not for the names.
nlohmann::json withoutProxyPasswords(nlohmann::json value);

/// A block of header lines: "<hidden>" stands for the values of those that log in or on.
std::wstring withoutCredentials(std::wstring_view headers);

} // namespace vx
