#include "tarnctl/log/problems.h"

#include <algorithm>
#include <tuple>

namespace tarnctl::log {

namespace {

constexpr std::size_t mostKinds = 1000;

/// A run of digits counts as one.
std::string kindOf(std::string_view message)
{
    std::string kind;
    for (const char character : message) {
        const bool isDigit = character >= '0' && character <= '9';
        if (!isDigit)
            kind += character;
        else if (!kind.ends_with('#'))
            kind += '#';
    }
    return kind;
}

// A key that was never set has its default: each read of it leaves a warning, and none is a fault.
bool isHarmless(std::string_view message)
{
    return message.find("Type: vx::settings::NotFoundException, ") != std::string_view::npos;
}

} // namespace

void Problems::take(const logreading::Record& record)
{
    if (record.level > logreading::Level::Warning || isHarmless(record.message))
        return;
    auto kind = kindOf(record.message);
    if (m_kinds.size() >= mostKinds && !m_kinds.contains(kind))
        kind = "(others)";
    const auto [place, isNew] = m_kinds.try_emplace(std::move(kind));
    auto& problem = place->second;
    if (isNew)
        problem = {record.level, std::string(record.message), 0, record.time, record.time};
    problem.level = std::min(problem.level, record.level);
    ++problem.count;
    problem.last = record.time;
}

std::vector<Problem> Problems::worst() const
{
    std::vector<Problem> result;
    for (const auto& [kind, problem] : m_kinds)
        result.push_back(problem);
    const auto rank = [](const Problem& problem) {
        return std::tuple(problem.level, -std::int64_t(problem.count), problem.first);
    };
    std::sort(result.begin(), result.end(), [&](const Problem& a, const Problem& b) { return rank(a) < rank(b); });
    return result;
}

} // namespace tarnctl::log
