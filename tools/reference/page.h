#pragma once

#include <initializer_list>
#include <string>

namespace tools {

/// As code, which keeps signs that would mean something in a page.
std::string quoted(const std::string& text);
/// A line of a table.
std::string tableRow(std::initializer_list<std::string> cells);

} // namespace tools
