#include "reference/loglines.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <set>
#include <string_view>

namespace tools {

namespace {

using Texts = std::vector<std::string>;

/// The name behind "Level::"; nothing where the argument is another.
std::optional<std::string> levelNamedBy(Tokens argument)
{
    if (argument.size() < 3 || argument[argument.size() - 3].raw != "Level")
        return std::nullopt;
    std::string name(argument.back().raw);
    std::transform(name.begin(), name.end(), name.begin(), [](unsigned char letter) { return std::tolower(letter); });
    return name;
}

/// Of an argument that is a number of the back-end's, or a constant for one.
std::string backendLevelOf(Tokens argument, const Constants& constants)
{
    static constexpr std::array names = {"fatal", "error", "warning", "info", "debug", "verbose"};
    const auto values = argument.size() == 1 ? constants.valuesOf(argument.front().raw) : Texts();
    const std::string number = values.empty() ? std::string(argument.front().raw) : values.front();
    return number.size() == 1 && number >= "1" && number <= "6" ? names[static_cast<std::size_t>(number[0] - '1')]
                                                                : "info";
}

/// What is inserted into the stream behind a call, up to the statement's end.
std::vector<Tokens> insertedBehind(const Call& call)
{
    if (call.rest.empty() || !call.rest.front().is("<<"))
        return {};
    std::size_t end = 0;
    for (; end < call.rest.size() && !call.rest[end].is(";"); ++end)
        if (call.rest[end].is("(") || call.rest[end].is("{") || call.rest[end].is("["))
            end = closing(call.rest, end);
    return split(call.rest.first(std::min(end, call.rest.size())), "<<");
}

bool isGuard(const Call& call)
{
    return call.name == "guarded" || call.name == "guardedAgainst";
}

/// "first: <first>, second: <second>"
std::string valuesText(const std::vector<Tokens>& values)
{
    std::string text;
    for (const Tokens value : values)
        text += (text.empty() ? "" : ", ") + rawText(value) + ": <" + placeholderOf(value) + ">";
    return text;
}

/// A format of printf with the arguments' names in it.
std::string formattedText(std::string_view format, std::vector<Tokens> arguments)
{
    std::string text;
    auto argument = arguments.begin();
    for (std::size_t at = 0; at < format.size(); ++at) {
        if (format[at] != '%') {
            text += format[at];
            continue;
        }
        at = format.find_first_of("%cdiuxXpsS", at + 1);
        if (at == std::string_view::npos)
            break;
        text += argument == arguments.end() ? "%" : "<" + placeholderOf(*argument++) + ">";
    }
    return text;
}

/// How many arguments of what throws stand before the reason; nothing for other calls.
std::optional<std::size_t> beforeReason(const Call& call)
{
    if (call.isThrown)
        return 0;
    const auto name = call.name;
    if (name == "VX_THROW_AS" || name == "VX_THROW_FROM" || name == "VX_THROW_WIN32_AS")
        return 2;
    if (name == "VX_THROW" || name == "VX_THROW_WIN32" || name == "VX_THROW_COM")
        return 1;
    return name == "VX_THROW_LAUNCH" ? std::optional<std::size_t>(0) : std::nullopt;
}

/// Without one there is nothing to find a statement by.
bool hasOwnText(const std::string& text)
{
    int depth = 0;
    return std::any_of(text.begin(), text.end(), [&](unsigned char letter) {
        depth += letter == '<' ? 1 : letter == '>' ? -1 : 0;
        return depth == 0 && std::isalpha(letter);
    });
}

/// Two at least, of more than a letter.
bool hasWords(const std::string& text)
{
    int words = 0;
    for (std::size_t at = 1; at < text.size(); ++at)
        if (std::isalpha(static_cast<unsigned char>(text[at - 1])) &&
            std::isalpha(static_cast<unsigned char>(text[at])))
            words += at == 1 || !std::isalnum(static_cast<unsigned char>(text[at - 2]));
    return words > 1 && text.find(' ') != std::string::npos;
}

class Finder {
public:
    Finder(const Constants& constants, const LogHelpers& helpers) : m_constants(constants), m_helpers(helpers) {}

    void look(const Call& call)
    {
        const auto& arguments = call.arguments;
        if (const auto skipped = beforeReason(call))
            addReason(arguments, *skipped);
        else if (isGuard(call))
            addGuard(arguments);
        else if (const auto helper = m_helpers.find(call.name); helper != m_helpers.end())
            addHandedOver(arguments, helper->second);
        else if (arguments.empty())
            return;
        else if (call.name == "static_assert")
            take(arguments);
        else if (call.name == "LogStream")
            add(levelNamedBy(arguments.front()).value_or("any"), insertedBehind(call), "");
        else if (call.name == "VX_LOG_VALUES")
            put({"debug", valuesText(arguments)}, {});
        else if (call.name == "logValues")
            addNamedValues(arguments);
        else if (call.name == "log" && arguments.size() > 1)
            addFormatted(arguments);
    }

    /// What no statement above has taken. Constants are where they are inserted.
    void lookForParts(Tokens source)
    {
        for (const Token& token : source)
            if (token.isText() && !m_taken.contains(token.raw.data()) && hasWords(token.value) &&
                !m_constants.isValue(token.value))
                put({"part", token.value}, {});
    }

    std::vector<LogLine> lines() { return std::move(m_lines); }

private:
    void take(const std::vector<Tokens>& expressions)
    {
        for (const Tokens expression : expressions)
            for (const Token& token : expression)
                m_taken.insert(token.raw.data());
    }

    void put(LogLine line, const std::vector<Tokens>& takenFrom)
    {
        take(takenFrom);
        if (std::find(m_lines.begin(), m_lines.end(), line) == m_lines.end())
            m_lines.push_back(std::move(line));
    }

    void add(const std::string& level, const std::vector<Tokens>& expressions, const std::string& end)
    {
        for (const auto& text : joinedTexts(expressions, m_constants))
            if (hasOwnText(text))
                put({level, text + end}, expressions);
    }

    void addReason(const std::vector<Tokens>& arguments, std::size_t skipped)
    {
        // Behind a code, or whatever else the type wants before it.
        for (std::size_t at = skipped; at < arguments.size(); ++at)
            add("exception", {arguments[at]}, "");
    }

    void addGuard(const std::vector<Tokens>& arguments)
    {
        const auto level = arguments.empty() ? std::nullopt : levelNamedBy(arguments.front());
        const std::size_t message = level ? 1 : 0;
        if (arguments.size() == message + 2)
            add(level.value_or("error"), {arguments[message]}, "<exception>");
    }

    void addHandedOver(const std::vector<Tokens>& arguments, const LogHelper& helper)
    {
        if (helper.argument < arguments.size())
            add(helper.level, {arguments[helper.argument]}, "<result>");
    }

    void addNamedValues(const std::vector<Tokens>& arguments)
    {
        if (arguments.front().size() != 1 || !arguments.front().front().isText())
            return;
        std::string text;
        const auto names = tokensOf(arguments.front().front().value);
        for (const Tokens name : split(names, ","))
            text += (text.empty() ? "" : ", ") + rawText(name) + ": <" + rawText(name) + ">";
        put({"debug", text}, arguments);
    }

    void addFormatted(const std::vector<Tokens>& arguments)
    {
        if (arguments[1].size() != 1 || !arguments[1].front().isText())
            return;
        std::string text = formattedText(arguments[1].front().value, {arguments.begin() + 2, arguments.end()});
        if (text.ends_with('\n'))
            text.pop_back();
        if (hasOwnText(text))
            put({backendLevelOf(arguments.front(), m_constants), text}, arguments);
    }

    const Constants& m_constants;
    const LogHelpers& m_helpers;
    std::vector<LogLine> m_lines;
    std::set<const char*> m_taken; ///< where the texts of the lines stand in the source
};

/// The level at which a body writes the parameter as the first or only text of a line.
std::optional<std::string> levelOf(Tokens body, std::string_view parameter, const LogHelpers& known)
{
    const auto isParameter = [&](Tokens expression) {
        return expression.size() == 1 && expression.front().raw == parameter;
    };
    for (const Call& call : callsOf(body)) {
        if (call.name == "LogStream" && !call.arguments.empty()) {
            const auto inserted = insertedBehind(call);
            if (!inserted.empty() && isParameter(inserted.front()))
                return levelNamedBy(call.arguments.front());
        }
        const auto helper = known.find(call.name);
        if (helper != known.end() && helper->second.argument < call.arguments.size() &&
            isParameter(call.arguments[helper->second.argument]))
            return helper->second.level;
    }
    return std::nullopt;
}

} // namespace

void findHelpers(Tokens source, LogHelpers& known)
{
    for (const Call& call : callsOf(source)) {
        // A definition: its body follows.
        std::size_t open = 0;
        while (open < call.rest.size() && (call.rest[open].raw == "const" || call.rest[open].raw == "noexcept"))
            ++open;
        if (open >= call.rest.size() || !call.rest[open].is("{"))
            continue;
        const auto body = call.rest.subspan(open, closing(call.rest, open) - open);
        for (std::size_t at = 0; at < call.arguments.size(); ++at)
            if (const auto level = levelOf(body, call.arguments[at].back().raw, known))
                known.try_emplace(std::string(call.name), LogHelper{at, *level});
    }
}

std::vector<LogLine> logLinesOf(Tokens source, const Constants& constants, const LogHelpers& helpers)
{
    Finder finder(constants, helpers);
    for (const Call& call : callsOf(source))
        finder.look(call);
    finder.lookForParts(source);
    return finder.lines();
}

} // namespace tools
