#include "tarnctl/log/pageoutput.h"

#include "tarnctl/log/page.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <ostream>
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

/// Within the data's element no "<" may stand; the page puts it back. A browser takes a carriage return for the end of
/// a line.
void writeText(std::ostream& stream, std::string_view text)
{
    const auto put = [&](std::string_view part) {
        stream.rdbuf()->sputn(part.data(), static_cast<std::streamsize>(part.size()));
    };
    const auto next = [&] { return std::min({text.find('<'), text.find('\x01'), text.find('\r')}); };
    for (auto place = next(); place != std::string_view::npos; place = next()) {
        put(text.substr(0, place));
        put(text[place] == '<' ? "\x01" : " ");
        text.remove_prefix(place + 1);
    }
    put(text);
    put("\n");
}

/// JSON is free to spell "<" in another way.
void writeJson(std::ostream& stream, const Json& object)
{
    for (const char character : object.dump(-1, ' ', false, Json::error_handler_t::replace))
        if (character == '<')
            stream << "\\u003c";
        else
            stream << character;
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

template <typename Items>
Json toJsonArray(const Items& items)
{
    auto array = Json::array();
    for (const auto& item : items)
        array.push_back(toJson(item));
    return array;
}

Json finding(std::string_view grade, Moment time, std::string text)
{
    return {{"grade", grade}, {"time", time}, {"text", std::move(text)}};
}

void addRuns(Json& findings, const std::vector<PluginRun>& runs)
{
    // The last one of each process may be going on.
    for (std::size_t index = 0; index + 1 < runs.size(); ++index)
        if (!runs[index].end)
            findings.push_back(finding("warning", runs[index].last,
                "the plug-in in process " + std::to_string(runs[index].process) + " stops without the end of its log"));
}

void addStarts(Json& findings, const std::vector<AgentStart>& starts)
{
    for (const auto& start : starts)
        if (start.outcome == Outcome::Failed || start.outcome == Outcome::Busy)
            findings.push_back(finding(start.outcome == Outcome::Failed ? "error" : "warning", start.begin,
                "agent start " + std::string(nameOf(start.outcome)) +
                    (start.exitCode ? ", exit code " + std::to_string(*start.exitCode) : "") + " after " +
                    std::to_string(start.tries) + (start.tries == 1 ? " try" : " tries")));
}

void addProblems(Json& findings, const Problems& problems)
{
    for (const auto& problem : problems.worst())
        findings.push_back(finding(nameOf(problem.level), problem.first,
            (problem.count > 1 ? std::to_string(problem.count) + " times: " : "") + problem.message));
}

} // namespace

PageOutput::PageOutput(std::ostream& stream) : m_stream(stream)
{
    m_stream << partOfPage({}, logMark);
}

void PageOutput::line(std::string_view line, const Record* record)
{
    writeText(m_stream, line);
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
    m_stream << partOfPage(logMark, storyMark);
    writeJson(m_stream,
        {{"first", m_first}, {"last", m_last}, {"findings", std::move(findings)}, {"runs", toJsonArray(m_story.runs())},
            {"starts", toJsonArray(m_story.starts())}, {"errors", m_errors}});
    m_stream << partOfPage(storyMark, {});
}

} // namespace tarnctl::log
