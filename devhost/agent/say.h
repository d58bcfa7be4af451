#pragma once

#include <string>

namespace devhost::agent {

/// Tells what the agent does: a line on standard output and one in the log.
void say(const std::string& line);

} // namespace devhost::agent
