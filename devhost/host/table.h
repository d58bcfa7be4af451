#pragma once

#include <string>
#include <vector>

namespace devhost::host {

/// Rows of cells; all rows have the same number. Texts are UTF-8.
using Table = std::vector<std::vector<std::string>>;

/// One line for each row, with the cells of a column under each other.
std::vector<std::string> align(const Table& table);

} // namespace devhost::host
