#pragma once

#include <stdexcept>
#include <string>

namespace tarnctl {

/// What the program ends with.
enum class ExitCode { Healthy = 0, Findings = 1, BadUsage = 2, Unreadable = 3 };

/// Ends a command with a code and a line that says why.
class CommandError : public std::runtime_error {
public:
    CommandError(ExitCode code, const std::string& line) : std::runtime_error(line), m_code(code) {}
    ExitCode code() const { return m_code; }

private:
    ExitCode m_code;
};

} // namespace tarnctl
