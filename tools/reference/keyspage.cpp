#include "reference/keyspage.h"

#include "common/settings/keylist.h"
#include "vxtl/str.h"

namespace tools {

namespace {

using namespace vx::tarn;

constexpr auto head = R"(# Keys of the store

Made by `./run docs` from the rows in `src/common/settings`, whose comments say what each key means. What the plug-in
reads, the management side, the user interface or the agent writes; what it writes, they read. Values that are untold
are a matter between them.

| Key | Type | Unit or texts | Default | The plug-in |
|---|---|---|---|---|
)";

std::string quoted(const std::string& text)
{
    return "`" + text + "`";
}

std::string unitOf(const KeyKind& kind)
{
    std::string texts = kind.unit ? kind.unit : "";
    for (const auto& choice : kind.choices)
        texts += (texts.empty() ? "" : ", ") + quoted(choice.text);
    return texts;
}

std::string defaultOf(const KeyInfo& key)
{
    switch (key.kind->type) {
    case KeyType::Bool: return quoted(key.fallback.number ? "true" : "false");
    case KeyType::Int32:
    case KeyType::Int64: return quoted(std::to_string(key.fallback.number));
    case KeyType::String: return *key.fallback.text ? quoted(key.fallback.text) : "empty";
    case KeyType::Json: return quoted("[]");
    case KeyType::Untold: break;
    }
    return {};
}

std::string accessOf(KeyAccess access)
{
    switch (access) {
    case KeyAccess::Read: return "reads";
    case KeyAccess::Write: return "writes";
    case KeyAccess::ReadWrite: return "reads and writes";
    case KeyAccess::Watched: break;
    }
    return "is told of changes";
}

bool isRead(KeyAccess access)
{
    return access == KeyAccess::Read || access == KeyAccess::ReadWrite;
}

} // namespace

std::string keysPage()
{
    std::string page = head;
    for (const auto& key : listKeys()) {
        const auto& kind = *key.kind;
        page += "| " + quoted(vx::str::toUtf8(key.name)) + " | " + vx::toText(kind.type) + " | " + unitOf(kind) +
                " | " + (isRead(kind.access) ? defaultOf(key) : "") + " | " + accessOf(kind.access) + " |\n";
    }
    return page;
}

} // namespace tools
