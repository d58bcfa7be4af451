#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace vx::logging {

/// The qualified name of a function as log lines and exceptions print it, cut out of the compiler's
/// __PRETTY_FUNCTION__ text: no return type, no arguments, no template or lambda noise. An anonymous
/// namespace reads "`anonymous-namespace'". Holds its text itself, so it can be a constant.
class FunctionName {
public:
    constexpr explicit FunctionName(std::string_view pretty)
    {
        // The first parenthesis outside "(anonymous namespace)" opens the argument list.
        std::size_t begin = 0;
        std::size_t end = 0;
        int depth = 0;
        for (; end < pretty.size(); ++end) {
            const char c = pretty[end];
            if (c == '<' || c == '[')
                ++depth;
            else if (c == '>' || c == ']')
                --depth;
            else if (c == '(' && depth == 0 && pretty.substr(end).starts_with(clangAnonymous))
                end += clangAnonymous.size() - 1;
            else if (c == '(' && depth == 0)
                break;
            else if (c == ' ' && depth == 0)
                begin = end + 1;
        }
        append(pretty.substr(begin, end - begin));
    }

    constexpr const char* c_str() const { return m_text.data(); }
    constexpr std::string_view view() const { return {m_text.data(), m_size}; }

private:
    static constexpr std::string_view gccAnonymous = "{anonymous}";
    static constexpr std::string_view clangAnonymous = "(anonymous namespace)";
    static constexpr std::string_view anonymous = "`anonymous-namespace'";

    constexpr void append(std::string_view name)
    {
        while (!name.empty() && (name.front() == '*' || name.front() == '&'))
            name.remove_prefix(1);
        while (!name.empty()) {
            if (name.starts_with(gccAnonymous)) {
                push(anonymous);
                name.remove_prefix(gccAnonymous.size());
            } else if (name.starts_with(clangAnonymous)) {
                push(anonymous);
                name.remove_prefix(clangAnonymous.size());
            } else {
                push(name.substr(0, 1));
                name.remove_prefix(1);
            }
        }
    }

    constexpr void push(std::string_view text)
    {
        for (const char c : text)
            if (m_size + 1 < m_text.size())
                m_text[m_size++] = c;
    }

    std::array<char, 256> m_text{};
    std::size_t m_size = 0;
};

} // namespace vx::logging
