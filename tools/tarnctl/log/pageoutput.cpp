#include "tarnctl/log/pageoutput.h"

#include "tarnctl/codes.h"
#include "tarnctl/log/page.h"

#include <algorithm>
#include <array>
#include <map>
#include <nlohmann/json.hpp>
#include <string>

namespace tarnctl::log {

using logreading::AgentStart;
using logreading::Level;
using logreading::Moment;
using logreading::Outcome;
using logreading::PluginRun;
using logreading::Record;
using Json = nlohmann::ordered_json;

namespace {

constexpr std::string_view logMark = "@LOG@", storyMark = "@STORY@";
// Marks in the time line; more can't be told apart there.
constexpr std::size_t mostErrors = 5000;
constexpr std::size_t mostFindings = 200;

std::string_view partOfPage(std::string_view from, std::string_view to)
{
    const auto begin = from.empty() ? 0 : page.find(from) + from.size();
    return page.substr(begin, to.empty() ? std::string_view::npos : page.find(to) - begin);
}

/// Within the data's element no "<" may stand; the page puts it back. A line of its own began for it behind a
/// carriage return.
bool isSpecial(char character)
{
    static constexpr auto specials = [] {
        std::array<bool, 256> table{};
        table['<'] = table['\x01'] = table['\r'] = true;
        return table;
    }();
    return specials[static_cast<unsigned char>(character)];
}

Json toJson(const PluginRun& run)
{
    return {{"process", run.process}, {"begin", run.begin}, {"end", run.end.value_or(run.last)},
        {"closed", run.end.has_value()}};
}

Json toJson(const AgentStart& start)
{
    auto asks = Json::array();
    for (const auto& ask : start.asks)
        asks.push_back({{"time", ask.time}, {"cause", nameOf(ask.cause)}, {"detail", ask.detail}});
    return {{"begin", start.begin}, {"end", start.end}, {"arguments", start.arguments},
        {"outcome", nameOf(start.outcome)}, {"exitCode", start.exitCode ? Json(*start.exitCode) : Json()},
        {"asks", std::move(asks)}};
}

Json finding(std::string_view grade, Moment time, std::string text)
{
    return {{"grade", grade}, {"time", time}, {"text", std::move(text)}};
}

void addRuns(Json& findings, const std::vector<PluginRun>& runs)
{
    // The last one may be going on, and in a log without banners nothing tells of an end.
    for (std::size_t index = 0; index + 1 < runs.size(); ++index)
        if (!runs[index].end && (runs[index].hasBanner || runs[index + 1].hasBanner))
            findings.push_back(finding("warning", runs[index].last,
                "the plug-in in process " + std::to_string(runs[index].process) + " stops without the end of its log"));
}

/// Those of one exit code are one finding, or a bad night would hide all others.
void addStarts(Json& findings, const std::vector<AgentStart>& starts)
{
    std::map<std::pair<Outcome, std::optional<std::int64_t>>, std::pair<std::size_t, Moment>> kinds;
    for (const auto& start : starts)
        if (start.outcome == Outcome::Failed || start.outcome == Outcome::Busy)
            ++kinds.try_emplace({start.outcome, start.exitCode}, 0, start.begin).first->second.first;
    for (const auto& [kind, found] : kinds) {
        const auto& [outcome, exitCode] = kind;
        const auto times = found.first > 1 ? std::to_string(found.first) + " times: " : "";
        const auto code = exitCode ? ", exit code " + std::to_string(*exitCode) + ": " + meaningOf(*exitCode) : "";
        findings.push_back(finding(outcome == Outcome::Failed ? "error" : "warning", found.second,
            times + "agent start " + std::string(nameOf(outcome)) + code));
    }
}

void addProblems(Json& findings, const Problems& problems)
{
    for (const auto& problem : problems.worst())
        findings.push_back(finding(nameOf(problem.level), problem.first,
            (problem.count > 1 ? std::to_string(problem.count) + " times: " : "") + problem.message));
}

} // namespace

PageOutput::PageOutput(std::ostream& stream) : m_writer(stream)
{
    m_writer.put(partOfPage({}, logMark));
}

void PageOutput::writeText(std::string_view text)
{
    for (;;) {
        const auto plain = static_cast<std::size_t>(std::find_if(text.begin(), text.end(), isSpecial) - text.begin());
        m_writer.put(text.substr(0, plain));
        if (plain == text.size())
            return m_writer.put('\n');
        m_writer.put(text[plain] == '<' ? '\x01' : ' ');
        text.remove_prefix(plain + 1);
    }
}

/// JSON is free to spell "<" in another way.
void PageOutput::writeJson(const Json& object)
{
    const auto text = object.dump(-1, ' ', false, Json::error_handler_t::replace);
    for (std::string_view rest = text; !rest.empty();) {
        const auto plain = std::min(rest.find('<'), rest.size());
        m_writer.put(rest.substr(0, plain));
        if (plain < rest.size())
            m_writer.put("\\u003c");
        rest.remove_prefix(std::min(plain + 1, rest.size()));
    }
}

/// One by one: there may be many.
template <typename Items>
void PageOutput::writeList(std::string_view name, const Items& items)
{
    m_writer.put(",\"");
    m_writer.put(name);
    m_writer.put("\":[");
    for (const auto& item : items) {
        if (&item != &*items.begin())
            m_writer.put(',');
        writeJson(toJson(item));
    }
    m_writer.put(']');
}

void PageOutput::line(std::string_view line, const Record* record)
{
    writeText(line);
    if (!record)
        return;
    m_story.take(*record);
    m_problems.take(*record);
    m_first = m_any ? std::min(m_first, record->time) : record->time;
    m_last = m_any ? std::max(m_last, record->time) : record->time;
    m_any = true;
    if (record->level <= Level::Error && m_errors.size() < mostErrors)
        m_errors.push_back(record->time);
}

void PageOutput::end()
{
    auto findings = Json::array();
    addStarts(findings, m_story.starts());
    addRuns(findings, m_story.runs());
    addProblems(findings, m_problems);
    if (findings.size() > mostFindings)
        findings.erase(findings.begin() + mostFindings, findings.end());
    m_writer.put(partOfPage(logMark, storyMark));
    m_writer.put("{\"first\":" + std::to_string(m_first) + ",\"last\":" + std::to_string(m_last) + ",\"findings\":");
    writeJson(findings);
    m_writer.put(",\"errors\":");
    writeJson(m_errors);
    writeList("runs", m_story.runs());
    writeList("starts", m_story.starts());
    m_writer.put('}');
    m_writer.put(partOfPage(storyMark, {}));
    flush();
}

} // namespace tarnctl::log
