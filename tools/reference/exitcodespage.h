#pragma once

#include <string>

namespace tools {

/// The exit codes of all programs that have some of their own.
std::string exitCodesPage();

} // namespace tools
