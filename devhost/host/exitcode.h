#pragma once

#include <stdexcept>
#include <string>

namespace devhost::host {

/// What the program ends with.
enum class ExitCode : int {
    Done = 0,
    Failed = 1,
    BadUsage = 2,
    NotRunning = 3,
    TimedOut = 4,
    AlreadyRunning = 5,
};

/// Null for what is none of them.
constexpr const char* wordsOf(ExitCode code)
{
    switch (code) {
    case ExitCode::Done: return "done";
    case ExitCode::Failed: return "failed";
    case ExitCode::BadUsage: return "bad usage";
    case ExitCode::NotRunning: return "no host of this instance is running, or the store is unreachable";
    case ExitCode::TimedOut: return "time-out";
    case ExitCode::AlreadyRunning: return "a host of this instance is already running";
    }
    return nullptr;
}

/// A command that failed: what() is the one line that the user sees.
class CommandError : public std::runtime_error {
public:
    CommandError(ExitCode code, const std::string& line) : std::runtime_error(line), m_code(code) {}

    ExitCode code() const noexcept { return m_code; }

private:
    ExitCode m_code;
};

} // namespace devhost::host
