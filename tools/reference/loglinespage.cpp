#include "reference/loglinespage.h"

#include "reference/loglines.h"
#include "reference/page.h"

#include <map>

namespace tools {

namespace {

constexpr auto head = R"(# Log lines

Every line that the plug-in, and the agent by what both share, may write, by the unit that writes it. `<name>` stands
for what is inserted. A search for a text between two of them finds the statement.

- "exception" marks the reason of an exception: it stands in the line of whoever caught it, behind "Reason: ", with the
  exception's type and place. "part" is a text that may stand in place of a `<name>`, or is no text of a log at all.
- What has no text of its own is not here. `{ function` and `} function` are the way into and out of a function, at
  level debug; "Exception occurred. " begins the report of an exception where nothing else is said.
- "any" is the level of whoever calls.
- `(one|other)` is one of the two. A source that writes the same line twice has it here once.
)";

struct Scanned {
    const Source* source;
    std::vector<Token> tokens;
};

/// What a source may mean by a name: its own constants and those of its unit's headers.
class UnitConstants {
public:
    explicit UnitConstants(const std::vector<Scanned>& all)
    {
        for (const auto& one : all)
            if (one.source->isHeader())
                m_headers[one.source->unit()].add(one.tokens);
    }

    Constants of(const Scanned& one) const
    {
        const auto found = m_headers.find(one.source->unit());
        Constants constants = found == m_headers.end() || one.source->isHeader() ? Constants() : found->second;
        constants.add(one.tokens);
        return constants;
    }

private:
    std::map<std::string, Constants> m_headers;
};

/// What each unit may call: it is known by its name alone, so only the one that units share is known everywhere.
LogHelpers helpersOf(const Scanned& one)
{
    LogHelpers helpers = {{"succeeded", {1, "error"}}};
    findHelpers(one.tokens, helpers);
    return helpers;
}

} // namespace

std::string logLinesPage(const std::vector<Source>& sources)
{
    std::vector<Scanned> all;
    for (const auto& source : sources)
        // The exit codes have a page of their own.
        if (source.unit() != "src/common/exitstatus")
            all.push_back({&source, tokensOf(source.text)});
    const UnitConstants constants(all);
    std::string page = head;
    std::string unit;
    for (const auto& one : all) {
        const auto lines = logLinesOf(one.tokens, constants.of(one), helpersOf(one));
        if (!lines.empty() && one.source->unit() != unit) {
            unit = one.source->unit();
            page += "\n## " + unit + "\n\n| Level | Text | Source |\n|---|---|---|\n";
        }
        for (const auto& line : lines)
            page += tableRow({line.level, quoted(line.text), one.source->path.substr(unit.size() + 1)});
    }
    return page;
}

} // namespace tools
