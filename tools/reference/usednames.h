#pragma once

#include "reference/sources.h"

#include <set>
#include <string>
#include <vector>

namespace tools {

/// Names of objects, keys and values that the sources give to the system, and that are none of those known; each with
/// its source. Found where a call has the name as a text or a constant, by texts that look like such names, and in the
/// headers that are there for them (names, places). What is made up at run time goes unseen.
std::vector<std::string> unknownNames(const std::vector<Source>& sources, const std::set<std::string>& known);

} // namespace tools
