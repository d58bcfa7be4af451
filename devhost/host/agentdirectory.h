#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace devhost::host {

/// The folder in which the plug-in looks for the agent; none when the registry names none.
std::optional<std::filesystem::path> readAgentDirectory();
/// Throws CommandError.
void writeAgentDirectory(const std::filesystem::path& folder);

/// One start of the stand-in agent, as its list of runs tells it.
struct AgentStart {
    std::string time;
    unsigned long pid;
    std::string arguments;
    std::optional<int> exitCode; ///< none while it runs, or when it did not end by itself
};

/// Oldest first; empty when the agent never ran in this folder.
std::vector<AgentStart> readAgentStarts(const std::filesystem::path& folder);

} // namespace devhost::host
