#include "logging/logstream.h"

#include "logcontext.h"
#include "logging/details/utf8.h"

#include <algorithm>

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
        m_text->append(text);
    } catch (...) {
    }
}

void LogStream::appendWide(std::wstring_view text) noexcept
{
    try {
        std::string utf8;
        details::appendUtf8(utf8, text);
        m_text->append(utf8);
    } catch (...) {
    }
}

void LogStream::finish() noexcept
{
    try {
        LogContext::instance().write(m_level, m_text->view(), 0);
    } catch (...) {
    }
}

void LogScope::enter() noexcept
{
    m_entered = true;
    write("{ ", 1);
}

void LogScope::leave() noexcept
{
    write("} ", -1);
}

void LogScope::write(std::string_view brace, int indentChange) const noexcept
{
    try {
        details::MessageText text;
        text.append(brace);
        text.append(m_name);
        LogContext::instance().write(Level::Debug, text.view(), indentChange);
    } catch (...) {
    }
}

namespace details {

namespace {

// The index behind a string or character literal that opens at `begin`.
std::size_t literalEnd(std::string_view text, std::size_t begin) noexcept
{
    std::size_t i = begin + 1;
    while (i < text.size() && text[i] != text[begin])
        i += text[i] == '\\' ? 2 : 1;
    return std::min(i + 1, text.size());
}

} // namespace

std::string_view takeArgumentName(std::string_view& names) noexcept
{
    int depth = 0;
    std::size_t end = 0;
    while (end < names.size()) {
        const char c = names[end];
        if (c == '"' || c == '\'') {
            end = literalEnd(names, end);
            continue;
        }
        if (c == '(' || c == '[' || c == '{' || c == '<')
            ++depth;
        else if (c == ')' || c == ']' || c == '}' || (c == '>' && end > 0 && names[end - 1] != '-'))
            --depth;
        else if (depth == 0 && c == ',')
            break;
        ++end;
    }
    std::string_view name = names.substr(0, end);
    names.remove_prefix(end < names.size() ? end + 1 : end);
    while (name.starts_with(' '))
        name.remove_prefix(1);
    return name;
}

} // namespace details

} // namespace vx::logging
