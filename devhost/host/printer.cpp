#include "host/printer.h"

#include <cstdio>
#include <nlohmann/json.hpp>
#include <ostream>
#include <windows.h>

namespace devhost::host {

namespace {

std::string formatTime(const char* format)
{
    SYSTEMTIME now;
    GetLocalTime(&now);
    char text[40];
    std::snprintf(text, sizeof(text), format, now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond,
        now.wMilliseconds);
    return text;
}

std::string dump(const nlohmann::json& object)
{
    return object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

} // namespace

void Printer::event(std::string_view name, std::string_view text, const nlohmann::json& fields)
{
    const auto time = formatTime("%04d-%02d-%02d %02d:%02d:%02d.%03d");
    if (!isJson())
        return line(time + "  " + std::string(text));
    nlohmann::json object = {{"time", time}, {"event", name}};
    object.update(fields);
    line(dump(object));
}

void Printer::result(std::string_view text, const nlohmann::json& object)
{
    if (isJson())
        line(dump(object));
    else
        line(text);
}

void Printer::line(std::string_view text)
{
    const std::lock_guard lock(m_mutex);
    m_output << text << std::endl;
}

} // namespace devhost::host
