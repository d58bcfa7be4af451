#include "tarnctl/log/traceoutput.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>

namespace tarnctl::log {

using logreading::AgentStart;
using logreading::Level;
using logreading::Record;
using logreading::Scope;
using Json = nlohmann::ordered_json;

namespace {

// Beyond the threads' ids, which have 16 bits in the log.
constexpr unsigned agentTrack = 0x10000;
constexpr unsigned requestTrack = 0x10001;

/// The format counts microseconds.
std::int64_t stamp(logreading::Moment moment)
{
    return moment * 1000;
}

Json trackName(std::uint16_t process, unsigned track, const char* name)
{
    return {{"ph", "M"}, {"name", "thread_name"}, {"pid", process}, {"tid", track}, {"args", {{"name", name}}}};
}

Json slice(std::uint16_t process, unsigned track, std::string_view name, logreading::Moment begin,
    logreading::Moment end, Json arguments)
{
    return {{"ph", "X"}, {"name", name}, {"pid", process}, {"tid", track}, {"ts", stamp(begin)},
        {"dur", stamp(std::max<logreading::Moment>(end - begin, 0))}, {"args", std::move(arguments)}};
}

} // namespace

TraceOutput::TraceOutput(std::ostream& stream) : m_writer(stream)
{
    m_writer.put(R"({"displayTimeUnit":"ms","traceEvents":[)");
}

template <typename Object>
void TraceOutput::event(const Object& object)
{
    m_writer.put(m_first ? "\n" : ",\n");
    m_writer.put(object.dump(-1, ' ', false, Json::error_handler_t::replace));
    m_first = false;
}

void TraceOutput::line(std::string_view, const Record* record)
{
    if (!record)
        return;
    m_story.take(*record);
    if (record->scope != Scope::None)
        return scope(*record);
    if (record->level <= Level::Warning)
        event(Json{{"ph", "i"}, {"s", "t"}, {"name", record->message}, {"pid", record->process},
            {"tid", record->thread}, {"ts", stamp(record->time)}, {"cat", logreading::nameOf(record->level)}});
}

/// The log may begin within a scope: what was not entered is not left.
void TraceOutput::scope(const Record& record)
{
    auto& open = m_openScopes[{record.process, record.thread}];
    const bool entered = record.scope == Scope::Entered;
    if (!entered && open == 0)
        return;
    open += entered ? 1u : -1u;
    const auto name = record.message.substr(0, record.message.find(". "));
    event(Json{{"ph", entered ? "B" : "E"}, {"name", name}, {"pid", record.process}, {"tid", record.thread},
        {"ts", stamp(record.time)}});
}

void TraceOutput::agentStart(const AgentStart& start)
{
    event(slice(start.process, agentTrack, "tarnag " + start.arguments, start.begin, start.end,
        {{"outcome", nameOf(start.outcome)}, {"exit code", start.exitCode ? Json(*start.exitCode) : Json()},
            {"tries", start.tries}}));
    for (const auto& ask : start.asks)
        event(slice(start.process, requestTrack, nameOf(ask.cause), ask.time, start.end, {{"detail", ask.detail}}));
}

void TraceOutput::end()
{
    for (const auto& run : m_story.runs()) {
        event(trackName(run.process, agentTrack, "agent"));
        event(trackName(run.process, requestTrack, "requests"));
        event(slice(run.process, agentTrack + 2, "plug-in", run.begin, run.end.value_or(run.last), Json::object()));
    }
    for (const auto& start : m_story.starts())
        agentStart(start);
    m_writer.put("\n]}\n");
    flush();
}

} // namespace tarnctl::log
