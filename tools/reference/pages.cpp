#include "reference/pages.h"

#include "reference/exitcodespage.h"
#include "reference/keyspage.h"
#include "reference/loglinespage.h"
#include "reference/objectspage.h"
#include "reference/page.h"
#include "reference/registrypage.h"
#include "vxtl/str.h"

namespace tools {

namespace {

constexpr auto index = R"(# Reference

Tables that `./run docs` makes of the code; a test holds them fresh.

| Page | What |
|---|---|
| [Keys](../keys.md) | every key of the store: type, unit, default, who writes it |
| [Log lines](log-lines.md) | every line of the log, with its level and where it is written |
| [Exit codes](exit-codes.md) | of the agent, `tarnctl.exe` and `tarnhost.exe`, in words |
| [Registry values](registry.md) | every value with its type, who writes and who reads it |
| [Named objects](named-objects.md) | events, mutexes and what else processes meet by |
)";

} // namespace

const std::vector<Page>& pages()
{
    static const std::vector<Page> all = {
        {"docs/keys.md", [](const auto&) { return keysPage(); }},
        {"docs/reference/log-lines.md", logLinesPage},
        {"docs/reference/exit-codes.md", [](const auto&) { return exitCodesPage(); }},
        {"docs/reference/registry.md", [](const auto&) { return registryPage(); }},
        {"docs/reference/named-objects.md", [](const auto&) { return objectsPage(); }},
        {"docs/reference/index.md", [](const auto&) { return std::string(index); }},
    };
    return all;
}

std::set<std::string> describedNames()
{
    std::set<std::string> names;
    const auto add = [&](const std::wstring& name) { names.insert(vx::str::toUtf8(name)); };
    for (const auto& object : namedObjects())
        add(object.name);
    for (const auto& value : registryValues()) {
        add(value.name);
        // Some are opened below a root that is given apart, some get their last part added.
        const auto belowRoot = value.key.substr(value.key.find(L'\\') + 1);
        for (const auto& key : {value.key, belowRoot, belowRoot.substr(0, belowRoot.rfind(L'\\'))})
            add(key);
    }
    return names;
}

} // namespace tools
