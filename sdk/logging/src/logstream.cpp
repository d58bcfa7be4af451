#include "logging/logstream.h"

#include "logging/details/utf8.h"
#include "logging/logcontext.h"

namespace vx::logging {

void LogStream::start() noexcept
{
    try {
        m_text.emplace();
    } catch (...) {
    }
}

void LogStream::append(std::string_view text) noexcept
{
    try {
        *m_text += text;
    } catch (...) {
    }
}

void LogStream::appendWide(std::wstring_view text) noexcept
{
    try {
        details::appendUtf8(*m_text, text);
    } catch (...) {
    }
}

void LogStream::finish() noexcept
{
    LogContext::instance().write(m_level, *m_text, 0);
}

void LogScope::enter() noexcept
{
    m_entered = true;
    try {
        LogContext::instance().write(Level::Debug, std::string("{ ") + m_name, 1);
    } catch (...) {
    }
}

void LogScope::leave() noexcept
{
    try {
        LogContext::instance().write(Level::Debug, std::string("} ") + m_name, -1);
    } catch (...) {
    }
}

namespace details {

std::string_view takeArgumentName(std::string_view& names) noexcept
{
    int depth = 0;
    bool quoted = false;
    std::size_t end = 0;
    for (; end < names.size(); ++end) {
        const char c = names[end];
        if (c == '"')
            quoted = !quoted;
        else if (!quoted && (c == '(' || c == '[' || c == '{' || c == '<'))
            ++depth;
        else if (!quoted && (c == ')' || c == ']' || c == '}' || (c == '>' && names[end - 1] != '-')))
            --depth;
        else if (!quoted && depth == 0 && c == ',')
            break;
    }
    std::string_view name = names.substr(0, end);
    names.remove_prefix(end < names.size() ? end + 1 : end);
    while (name.starts_with(' '))
        name.remove_prefix(1);
    return name;
}

} // namespace details

} // namespace vx::logging
