#pragma once

#include <stdexcept>
#include <string>

namespace tarnctl {

/// What the program ends with.
enum class ExitCode { Healthy = 0, Findings = 1, BadUsage = 2, Unreadable = 3 };

/// Null for what is none of them.
constexpr const char* wordsOf(ExitCode code)
{
    switch (code) {
    case ExitCode::Healthy: return "healthy, or what was asked for was given";
    case ExitCode::Findings: return "findings";
    case ExitCode::BadUsage: return "bad usage";
    case ExitCode::Unreadable: return "something could not be read";
    }
    return nullptr;
}

/// Ends a command with a code and a line that says why.
class CommandError : public std::runtime_error {
public:
    CommandError(ExitCode code, const std::string& line) : std::runtime_error(line), m_code(code) {}
    ExitCode code() const { return m_code; }

private:
    ExitCode m_code;
};

} // namespace tarnctl
