#pragma once

#include <string>
#include <string_view>

namespace tarnctl::bundle {

/// A line of any text without the passwords in it: of URLs and proxies' texts, wherever in the line, and the values of
/// headers that log in.
std::string redact(std::string_view line);

} // namespace tarnctl::bundle
