#include "tarnctl/log/pattern.h"

#include "vxtl/str.h"

namespace tarnctl::log {

namespace {

// Backtracking, the library's usual way, may take for ever and recurses with each character of the line.
constexpr auto flags = std::regex_constants::ECMAScript | std::regex_constants::__polynomial;

/// To be matched from the beginning of the line: the library's own search would begin anew at each character.
std::wregex somewhere(const std::string& text)
{
    const auto wide = vx::str::fromUtf8(text);
    // Alone first: put between parentheses, what is none might become one.
    std::wregex(wide, flags);
    return std::wregex(L"[\\s\\S]*?(?:" + wide + L")", flags);
}

} // namespace

Pattern::Pattern(const std::string& text) : m_text(text)
{
    if (text.find_first_of("^$\\.*+?()[]{}|") != std::string::npos)
        m_expression = somewhere(text);
}

bool Pattern::isIn(std::string_view line) const
{
    if (!m_expression)
        return line.find(m_text) != std::string_view::npos;
    const auto wide = vx::str::fromUtf8(line);
    return std::regex_search(wide, *m_expression, std::regex_constants::match_continuous);
}

} // namespace tarnctl::log
