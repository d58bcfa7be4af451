#pragma once

#include <string>
#include <vector>

namespace devhost::host {

/// Runs the command that the arguments (UTF-8, without the program's name) ask for and gives the exit code
/// of the process. Failures are one line on standard error; nothing is thrown. Called once per process.
int runCommandLine(const std::vector<std::string>& arguments);

} // namespace devhost::host
