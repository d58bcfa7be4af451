#pragma once

#include <filesystem>
#include <string>

namespace devhost::host {

/// The system's text of an error code with its number, as one line; the number alone when it has none.
std::string systemText(unsigned long code);

/// UTF-8 for messages.
std::string toText(const std::filesystem::path& path);

} // namespace devhost::host
