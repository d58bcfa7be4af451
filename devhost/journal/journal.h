#pragma once

#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace devhost::journal {

/// The journal of the stand-in agent, in the agent's folder.
inline constexpr auto agentJournal = L"tarnag.runs.jsonl";
/// The journal of the stand-in restart program, in that program's folder.
inline constexpr auto restartJournal = L"restartprompt.runs.jsonl";

/// A list of what processes did, one JSON object per line unless somebody has edited it. Several processes append to
/// one file at once: each append is done under a lock on the file, which keeps no reader out.
class Journal {
public:
    explicit Journal(std::filesystem::path file) : m_file(std::move(file)) {}

    /// Appends the object, with "time" in UTC and "pid" of this process put in. Gives the entries that stood there
    /// before. Throws std::runtime_error when the file cannot be used.
    std::vector<nlohmann::json> append(nlohmann::json entry) const;
    /// Oldest first; empty without a file. Lines that are no JSON are passed over.
    std::vector<nlohmann::json> read() const;

private:
    std::filesystem::path m_file;
};

} // namespace devhost::journal
