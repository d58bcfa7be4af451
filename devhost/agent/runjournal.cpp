#include "agent/runjournal.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace devhost::agent {

std::size_t RunJournal::appendStart(const std::vector<std::string>& arguments, std::string_view list) const
{
    const auto before = m_journal.append({{"event", "start"}, {"list", list}, {"arguments", arguments}});
    return static_cast<std::size_t>(std::ranges::count_if(before, [&](const nlohmann::json& entry) {
        return entry.is_object() && entry.value("event", "") == "start" && entry.value("list", "runs") == list;
    }));
}

void RunJournal::appendStep(const std::string& step, const nlohmann::json& result) const
{
    m_journal.append({{"event", "step"}, {"step", step}, {"result", result}});
}

void RunJournal::appendEnd(int exitCode) const
{
    m_journal.append({{"event", "end"}, {"exit_code", exitCode}});
}

} // namespace devhost::agent
