#include "host/commands.h"
#include "host/printer.h"
#include "host/stopsignal.h"
#include "host/table.h"
#include "keys/keycatalogue.h"
#include "store/client/client.h"
#include "vxtl/parsejson.h"

#include <mutex>
#include <nlohmann/json.hpp>

namespace devhost::host {

namespace {

using nlohmann::json;

struct PatchesOptions {
    bool follow = false;
    std::optional<unsigned> count;
};

const std::string key = keyOf(keys::settings.currentStatus.patchesToInstall);

json readPatches(store::Client& client)
{
    const auto value = client.get(key);
    const auto patches = value && value->type() == store::Type::Object ? vx::parseJson(value->asObject()) : json();
    if (value && !patches.is_array())
        throw CommandError(ExitCode::Failed, key + " holds no list");
    return patches;
}

std::string textOf(const json& object, const char* name)
{
    const auto found = object.is_object() ? object.find(name) : object.end();
    return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

std::string nameOf(const json& patch)
{
    for (const auto* name : {"user_friendly_update_name", "update_name", "bulletin_id"})
        if (auto text = textOf(patch, name); !text.empty())
            return text;
    return textOf(patch, "update_id");
}

std::string severityOf(const json& patch)
{
    const auto severity = patch.is_object() ? patch.value("severity", json()) : json();
    return severity == 1 ? "critical" : severity == 2 ? "important" : severity.is_null() ? "" : severity.dump();
}

std::string summary(const json& patches)
{
    if (patches.is_null())
        return "nothing was published yet";
    return patches.empty() ? "no patches to install" : std::to_string(patches.size()) + " patches to install";
}

void printTable(Printer& printer, const json& patches)
{
    Table table{{"NAME", "PRODUCT", "SEVERITY", "STATE", "CODE"}};
    for (const auto& patch : patches) {
        const auto status = patch.is_object() ? patch.value("status", json()) : json();
        table.push_back({nameOf(patch), textOf(patch, "product_name"), severityOf(patch), textOf(status, "value"),
            textOf(status, "code")});
    }
    for (const auto& line : align(table))
        printer.line(line);
}

/// Prints what is published each time it differs from what was printed last. Any thread.
class Follower {
public:
    Follower(const Context& context, std::optional<unsigned> count)
        : m_context(context), m_left(count), m_client(context.instance)
    {}

    void look()
    {
        const std::lock_guard lock(m_mutex);
        const auto patches = readPatches(m_client);
        if (m_left == 0u || m_shown == patches)
            return;
        m_shown = patches;
        auto& printer = m_context.printer;
        printer.event("patches", summary(patches), {{"patches", patches}});
        if (!printer.isJson() && !patches.empty())
            printTable(printer, patches);
        if (m_left && --*m_left == 0)
            m_context.stop.set();
    }

private:
    const Context& m_context;
    std::mutex m_mutex;
    std::optional<unsigned> m_left; ///< guarded by m_mutex, like all below
    std::optional<json> m_shown;
    store::Client m_client;
};

ExitCode showPatches(const Context& context)
{
    store::Client client(context.instance);
    const auto patches = readPatches(client);
    auto& printer = context.printer;
    if (printer.isJson())
        for (const auto& patch : patches)
            printer.result({}, patch);
    else if (patches.empty())
        printer.line(summary(patches));
    else
        printTable(printer, patches);
    return ExitCode::Done;
}

ExitCode followPatches(const Context& context, std::optional<unsigned> count)
{
    Follower follower(context, count);
    store::Client changes(context.instance);
    changes.subscribe(key, [&](const store::Change&) { follower.look(); });
    follower.look();
    context.stop.wait(ipc::forever);
    return ExitCode::Done;
}

ExitCode showOrFollow(const Context& context, const PatchesOptions& options)
{
    return options.follow ? followPatches(context, options.count) : showPatches(context);
}

} // namespace

void patchesCommands(Commands& commands)
{
    const auto [patches, options] =
        commands.add("patches", "print the patches that are to be installed and their states", showOrFollow);
    auto* follow = patches->add_flag("-f,--follow", options.follow, "again each time they have changed, until Ctrl-C");
    patches->add_option("--count", options.count, "end after that many tables")
        ->needs(follow)
        ->check(CLI::PositiveNumber);
}

} // namespace devhost::host
