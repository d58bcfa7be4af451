#pragma once

#include "reference/sources.h"

namespace tools {

/// All lines that the sources write into the log, by unit.
std::string logLinesPage(const std::vector<Source>& sources);

} // namespace tools
