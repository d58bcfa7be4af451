#include "tarnctl/log/textoutput.h"

#include <cstdio>
#include <nlohmann/json.hpp>

namespace tarnctl::log {

using logreading::Level;
using logreading::Record;
using logreading::Scope;

namespace {

/// Empty for what needs no colour.
std::string_view colourOf(const Record* record)
{
    constexpr std::string_view red = "\x1b[31m", yellow = "\x1b[33m", faint = "\x1b[2m";
    if (!record)
        return faint;
    switch (record->level) {
    case Level::Fatal:
    case Level::Error: return red;
    case Level::Warning: return yellow;
    default: return record->scope == Scope::None ? std::string_view() : faint;
    }
}

/// As it stands in the log.
std::string hexadecimal(std::uint16_t id)
{
    char text[8];
    std::snprintf(text, sizeof(text), "%04x", id);
    return text;
}

std::string_view nameOf(Scope scope)
{
    return scope == Scope::Entered ? "entered" : "left";
}

} // namespace

void TextOutput::line(std::string_view line, const Record* record)
{
    const auto colour = m_colours == Colours::ByLevel ? colourOf(record) : std::string_view();
    m_writer.put(colour);
    m_writer.put(line);
    if (!colour.empty())
        m_writer.put("\x1b[0m");
    m_writer.put('\n');
}

void JsonOutput::line(std::string_view line, const Record* record)
{
    nlohmann::ordered_json object;
    if (record) {
        object = {{"time", logreading::formatMoment(record->time)}, {"process", hexadecimal(record->process)},
            {"thread", hexadecimal(record->thread)}, {"level", logreading::nameOf(record->level)},
            {"depth", record->depth}};
        if (record->scope != Scope::None)
            object["scope"] = nameOf(record->scope);
        object["message"] = record->message;
    } else {
        object["line"] = line;
    }
    m_writer.put(object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
    m_writer.put('\n');
}

} // namespace tarnctl::log
