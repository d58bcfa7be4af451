#include "reference/constants.h"

#include <algorithm>
#include <cctype>

namespace tools {

namespace {

bool isConstant(Tokens before)
{
    for (auto token = before.rbegin(); token != before.rend(); ++token) {
        if (token->is(";") || token->is("{") || token->is("}"))
            return false;
        if (token->raw == "constexpr" || token->raw == "const")
            return true;
    }
    return false;
}

/// Whether a line shows it as the source does.
bool isPlain(const Token& value)
{
    return value.isText() ||
           std::all_of(value.raw.begin(), value.raw.end(), [](unsigned char letter) { return std::isdigit(letter); });
}

} // namespace

void Constants::add(Tokens source)
{
    for (std::size_t at = 1; at + 2 < source.size(); ++at) {
        std::size_t value = at;
        if (source[value].is("]") && source[value - 1].is("["))
            ++value;
        if (!source[value].is("=") || !source[value + 2].is(";"))
            continue;
        const auto& name = source[value == at ? at - 1 : at - 2];
        const auto& token = source[value + 1];
        if (name.isWord() && isPlain(token) && isConstant(source.first(at)))
            m_values[std::string(name.raw)].push_back(token.isText() ? token.value : std::string(token.raw));
    }
}

std::vector<std::string> Constants::valuesOf(std::string_view name) const
{
    const auto found = m_values.find(name);
    return found == m_values.end() ? std::vector<std::string>() : found->second;
}

bool Constants::isValue(const std::string& text) const
{
    return std::any_of(m_values.begin(), m_values.end(), [&](const auto& constant) {
        return std::find(constant.second.begin(), constant.second.end(), text) != constant.second.end();
    });
}

} // namespace tools
