#include "qrl-probe/findings.h"

#include <algorithm>
#include <utility>

namespace tools::qrlprobe {

namespace {

constexpr std::size_t outcomeWidth = 10;
constexpr std::size_t nameWidth = 20;

std::string padded(std::string text, std::size_t width)
{
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

} // namespace

void Findings::pass(Check check, const std::string& seen)
{
    put(check, Outcome::Passed, seen);
}

void Findings::fail(Check check, const std::string& seen)
{
    put(check, Outcome::Failed, seen);
}

void Findings::judge(Check check, bool passed, const std::string& seen)
{
    put(check, passed ? Outcome::Passed : Outcome::Failed, seen);
}

void Findings::put(Check check, Outcome outcome, const std::string& seen)
{
    auto& finding = m_findings[static_cast<std::size_t>(check)];
    if (finding.outcome == Outcome::Failed || (finding.outcome == outcome && finding.seen == seen))
        return;
    finding = {outcome, seen, true};
}

std::string Findings::line(Check check) const
{
    static constexpr const char* outcomes[] = {"not seen", "ok", "FAILED"};
    const auto& finding = m_findings[static_cast<std::size_t>(check)];
    const auto& text = textOf(check);
    return padded(outcomes[static_cast<std::size_t>(finding.outcome)], outcomeWidth) + padded(text.name, nameWidth) +
           "expected: " + text.expected + "; seen: " + finding.seen;
}

std::string Findings::verdict() const
{
    if (const auto failed = namesOf(Outcome::Failed); !failed.empty())
        return "verdict: FAILED: " + failed;
    if (const auto open = namesOf(Outcome::NotSeen); !open.empty())
        return "verdict: no fault so far; not seen: " + open;
    return "verdict: passed";
}

std::string Findings::namesOf(Outcome outcome) const
{
    std::string names;
    for (std::size_t i = 0; i < checkCount; ++i)
        if (m_findings[i].outcome == outcome)
            names += (names.empty() ? "" : ", ") + std::string(textOf(static_cast<Check>(i)).name);
    return names;
}

std::vector<Check> Findings::takeChanges()
{
    std::vector<Check> changes;
    for (std::size_t i = 0; i < checkCount; ++i)
        if (std::exchange(m_findings[i].isChanged, false))
            changes.push_back(static_cast<Check>(i));
    return changes;
}

} // namespace tools::qrlprobe
