#pragma once

#include <stdexcept>
#include <string>

namespace devhost::host {

/// What the program ends with.
enum class ExitCode : int {
    Done = 0,
    Failed = 1,
    BadUsage = 2,
    NotRunning = 3, ///< no host of this instance, or no store
    TimedOut = 4,
    AlreadyRunning = 5,
};

/// A command that failed: what() is the one line that the user sees.
class CommandError : public std::runtime_error {
public:
    CommandError(ExitCode code, const std::string& line) : std::runtime_error(line), m_code(code) {}

    ExitCode code() const noexcept { return m_code; }

private:
    ExitCode m_code;
};

} // namespace devhost::host
