#include "reference/usednames.h"

#include "reference/constants.h"
#include "reference/tokens.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace tools {

namespace {

/// What takes a name, and as which argument.
struct Taker {
    std::string_view name;
    std::size_t argument;
};
constexpr Taker takers[] = {
    // Objects.
    {"CreateEventW", 3}, {"OpenEventW", 2}, {"CreateMutexW", 2}, {"OpenMutexW", 2}, {"CreateSemaphoreW", 3},
    {"CreateWaitableTimerW", 2}, {"CreateFileMappingW", 5}, {"OpenFileMappingW", 2}, {"CreateJobObjectW", 1},
    {"CreateNamedPipeW", 0}, {"CreateMailslotW", 0}, {"GlobalAddAtomW", 0}, {"GlobalFindAtomW", 0}, {"AddAtomW", 0},
    {"RegisterWindowMessageW", 0}, {"RegisterEventSourceW", 1}, {"createEvent", 2}, {"openEvent", 1},
    {"createAutoResetEvent", 0}, {"createManualResetEvent", 0}, {"createGlobalAtom", 0}, {"createAccessibleMutex", 0},
    {"GlobalMutex", 0},
    // The registry.
    {"RegOpenKeyExW", 1}, {"RegCreateKeyExW", 1}, {"RegQueryValueExW", 1}, {"RegSetValueExW", 1}, {"RegGetValueW", 2},
    {"RegDeleteValueW", 1}, {"getInt32Value", 0}, {"getInt64Value", 0}, {"getStringValue", 0},
    {"getMultiStringValue", 0}, {"getBinaryValue", 0}, {"setInt32Value", 0}, {"setInt64Value", 0},
    {"setStringValue", 0}, {"setMultiStringValue", 0}, {"setBinaryValue", 0}, {"doesValueExist", 0}, {"deleteValue", 0},
    {"openKey", 0}, {"createKey", 0}, {"deleteKey", 0}, {"doesKeyExist", 0}, {"registryText", 3}, {"number", 0}};

/// make_shared<GlobalMutex>(name) takes what the class takes.
std::string_view calledBy(const Call& call)
{
    const bool isMaker = call.name.starts_with("make_") && !call.templateArguments.empty();
    return isMaker ? call.templateArguments.back().raw : call.name;
}

bool looksLikeName(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char letter) { return std::tolower(letter); });
    static constexpr std::array beginnings = {"global\\", "local\\", "software\\", "system\\"};
    return (text.starts_with("hkey_") && text.find('\\') != std::string::npos) ||
           std::any_of(beginnings.begin(), beginnings.end(), [&](auto front) { return text.starts_with(front); });
}

bool isHeaderOfNames(const Source& source)
{
    const auto file = source.path.substr(source.path.rfind('/') + 1);
    return source.isHeader() && (file.find("place") != std::string::npos || file.ends_with("names.h"));
}

class Search {
public:
    Search(const std::set<std::string>& known, const Constants& constants) : m_known(known), m_constants(constants) {}

    void look(const Source& source, Tokens tokens)
    {
        Constants own;
        own.add(tokens);
        for (const Token& token : tokens)
            if (token.isText() && token.isWide && (isHeaderOfNames(source) || looksLikeName(token.value)))
                expect(source, token.value);
        for (const Call& call : callsOf(tokens))
            for (const Taker& taker : takers)
                if (taker.name == calledBy(call) && taker.argument < call.arguments.size())
                    lookAtName(source, own, call.arguments[taker.argument]);
    }

    std::vector<std::string> take() { return std::move(m_unknown); }

private:
    void lookAtName(const Source& source, const Constants& own, Tokens argument)
    {
        const Token& last = argument.back();
        if (argument.front().isText())
            return expect(source, argument.front().value);
        // The source's own ones first: headers may have others of the same name.
        auto values = own.valuesOf(last.raw);
        if (values.empty())
            values = m_constants.valuesOf(last.raw);
        for (const auto& value : values)
            expect(source, value);
    }

    void expect(const Source& source, const std::string& name)
    {
        const std::string line = source.path + ": " + name;
        if (!name.empty() && !m_known.contains(name) &&
            std::find(m_unknown.begin(), m_unknown.end(), line) == m_unknown.end())
            m_unknown.push_back(line);
    }

    const std::set<std::string>& m_known;
    const Constants& m_constants; ///< of all headers
    std::vector<std::string> m_unknown;
};

} // namespace

std::vector<std::string> unknownNames(const std::vector<Source>& sources, const std::set<std::string>& known)
{
    std::vector<std::vector<Token>> all;
    Constants constants;
    for (const auto& source : sources) {
        all.push_back(tokensOf(source.text));
        if (source.isHeader())
            constants.add(all.back());
    }
    Search search(known, constants);
    for (std::size_t at = 0; at < sources.size(); ++at)
        search.look(sources[at], all[at]);
    return search.take();
}

} // namespace tools
