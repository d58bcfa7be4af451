#pragma once

#include "journal/journal.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace devhost::agent {

/// The list of all starts of the agent, one JSON line for each start, step and end. Throws as Journal does.
class RunJournal {
public:
    explicit RunJournal(journal::Journal journal) : m_journal(std::move(journal)) {}

    /// Appends {"event": "start", "list", "arguments"} and gives how many starts of the same list of runs stood there
    /// before.
    std::size_t appendStart(const std::vector<std::string>& arguments, std::string_view list = "runs") const;
    /// Appends {"event": "step", "step", "result"}.
    void appendStep(const std::string& step, const nlohmann::json& result) const;
    /// Appends {"event": "end", "exit_code"}.
    void appendEnd(int exitCode) const;

private:
    journal::Journal m_journal;
};

} // namespace devhost::agent
