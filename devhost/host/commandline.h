#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace devhost::host {

/// Runs the command that the arguments (UTF-8, without the program's name) ask for and gives the exit code
/// of the process. A failure is one line in `errors`; nothing is thrown. One call at a time.
int runCommandLine(const std::vector<std::string>& arguments, std::ostream& output, std::ostream& errors);

} // namespace devhost::host
