#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace devhost::agent {

/// The list of all starts of the agent, one JSON line for each start and each end. Several processes
/// append to one file at once: each append and count is done under a lock on the file. Operations throw
/// std::runtime_error when the file cannot be used.
class RunJournal {
public:
    explicit RunJournal(std::filesystem::path file) : m_file(std::move(file)) {}

    /// Appends {"event": "start", "time", "pid", "list", "arguments"} and gives how many starts of the same list of
    /// runs stood there before.
    std::size_t appendStart(const std::vector<std::string>& arguments, std::string_view list = "runs") const;
    /// Appends {"event": "end", "time", "pid", "exit_code"}.
    void appendEnd(int exitCode) const;

private:
    std::filesystem::path m_file;
};

} // namespace devhost::agent
