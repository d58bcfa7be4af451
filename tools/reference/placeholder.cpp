#include "reference/placeholder.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace tools {

namespace {

using namespace std::string_view_literals;

// These say nothing about what they give, the object does.
constexpr std::array forms = {"c_str"sv, "count"sv, "data"sv, "get"sv, "native"sv, "str"sv, "value"sv, "value_or"sv,
    "view"sv, "what"sv, "wstring"sv};

bool isInBrackets(Tokens expression)
{
    return expression.size() > 2 && expression.front().is("(") && closing(expression, 0) == expression.size() - 1;
}

std::string withoutPrefix(std::string_view name)
{
    return std::string(name.starts_with("m_") ? name.substr(2) : name);
}

std::vector<std::string> appended(const std::vector<std::string>& fronts, const std::vector<std::string>& ends)
{
    std::vector<std::string> all;
    for (const auto& front : fronts)
        for (const auto& end : ends)
            all.push_back(front + end);
    return all;
}

bool hasText(Tokens expression)
{
    return std::any_of(expression.begin(), expression.end(), [](const Token& token) { return token.isText(); });
}

/// "(yes|no)"
std::string choiceOf(Tokens answers, const Constants& constants)
{
    std::string choice;
    for (const Tokens answer : split(answers, ":"))
        choice += (choice.empty() ? "(" : "|") + textsOf(answer, constants).front();
    return choice + ")";
}

/// Of a word, or of one with the names of its scopes in front.
std::vector<std::string> constantsOf(Tokens expression, const Constants& constants)
{
    const bool isName = std::all_of(
        expression.begin(), expression.end(), [](const Token& token) { return token.isWord() || token.is("::"); });
    return isName ? constants.valuesOf(expression.back().raw) : std::vector<std::string>();
}

} // namespace

std::string placeholderOf(Tokens expression)
{
    if (isInBrackets(expression))
        return placeholderOf(expression.subspan(1, expression.size() - 2));
    if (split(expression, "+").size() > 1 || split(expression, "?").size() > 1)
        return rawText(expression);
    std::string name;
    for (std::size_t at = 0; at < expression.size(); ++at) {
        const Token& token = expression[at];
        if (token.isWord() && (name.empty() || std::find(forms.begin(), forms.end(), token.raw) == forms.end()))
            name = withoutPrefix(token.raw);
        if (!token.is("(") && !token.is("["))
            continue;
        const auto end = closing(expression, at);
        const auto arguments = expression.subspan(at + 1, end - at - 1);
        const bool isMember = std::any_of(expression.begin(), expression.begin() + static_cast<std::ptrdiff_t>(at),
            [](const Token& before) { return before.is(".") || before.is("->"); });
        if (token.is("(") && end + 1 == expression.size() && !arguments.empty() && !isMember)
            return placeholderOf(split(arguments, ",").front());
        at = end;
    }
    return name == "e" ? "exception" : name;
}

std::vector<std::string> textsOf(Tokens expression, const Constants& constants)
{
    if (isInBrackets(expression))
        return textsOf(expression.subspan(1, expression.size() - 2), constants);
    if (expression.size() == 1 && expression.front().kind != Token::Kind::Word)
        return {expression.front().value};
    if (auto values = constantsOf(expression, constants); !values.empty())
        return values;
    if (hasText(expression)) {
        if (const auto parts = split(expression, "+"); parts.size() > 1)
            return joinedTexts(parts, constants);
        if (const auto parts = split(expression, "?"); parts.size() == 2)
            return {choiceOf(parts.back(), constants)};
        // A text that an object is made of: std::wstring(L"text").
        if (const auto calls = callsOf(expression); calls.size() == 1 && calls.front().rest.empty())
            return textsOf(calls.front().arguments.front(), constants);
    }
    return {"<" + placeholderOf(expression) + ">"};
}

std::vector<std::string> joinedTexts(const std::vector<Tokens>& expressions, const Constants& constants)
{
    std::vector<std::string> texts = {""};
    for (const Tokens expression : expressions)
        texts = appended(texts, textsOf(expression, constants));
    return texts;
}

} // namespace tools
