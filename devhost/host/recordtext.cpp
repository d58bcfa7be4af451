#include "host/recordtext.h"

#include <nlohmann/json.hpp>

namespace devhost::host {

namespace {

using nlohmann::json;

std::string textOf(const json& record, const char* member)
{
    return record.value(member, std::string());
}

/// " [NAME: A, B]", nothing for an empty list.
std::string listText(const json& record, const char* member)
{
    std::string text;
    for (const json& entry : record.value(member, json::array()))
        text +=
            (text.empty() ? "" : ", ") + textOf(entry, "text") + (entry.value("selected", false) ? " (selected)" : "");
    return text.empty() ? text : std::string(" [") + member + ": " + text + "]";
}

} // namespace

std::string flyerText(const json& record)
{
    std::string text = "flyer: " + textOf(record, "heading");
    for (const char* member : {"message", "details"})
        if (const auto part = textOf(record, member); !part.empty())
            text += " - " + part;
    return text + listText(record, "menu") + listText(record, "buttons");
}

std::string alertText(const json& record)
{
    return "alert: " + textOf(record, "type") + " " +
           record.value("data", json()).dump(-1, ' ', false, json::error_handler_t::replace);
}

} // namespace devhost::host
