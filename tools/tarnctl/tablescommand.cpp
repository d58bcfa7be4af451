#include "tarnctl/tablescommand.h"

#include "common/exitstatus/exitstatus.h"
#include "common/settings/keylist.h"
#include "meridia-settings/meridiasettingsapi.h"
#include "settings-api/exceptions.h"
#include "tarnctl/health/gather.h"
#include "tarnctl/store.h"
#include "vxtl/credentials.h"

#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>

namespace tarnctl {

using namespace vx::tarn;
using nlohmann::ordered_json;
using vx::meridia::SettingsApi;

namespace {

ExitCode printCodes(const Context& context)
{
    for (const auto& status : common::exitstatus::all) {
        const auto meaning = vx::str::toUtf8(status.message());
        if (context.json)
            context.output << ordered_json{{"code", status.code()}, {"meaning", meaning}}.dump() << '\n';
        else
            context.output << std::right << std::setw(5) << status.code() << "  " << meaning << '\n';
    }
    return ExitCode::Healthy;
}

/// Null for a key that is never read.
ordered_json defaultOf(const KeyInfo& key)
{
    if (key.kind->access != KeyAccess::Read && key.kind->access != KeyAccess::ReadWrite)
        return nullptr;
    switch (key.kind->type) {
    case KeyType::Bool: return key.fallback.number != 0;
    case KeyType::Int32:
    case KeyType::Int64: return key.fallback.number;
    case KeyType::String: return key.fallback.text;
    case KeyType::Json: return ordered_json::array();
    case KeyType::Untold: break;
    }
    return nullptr;
}

ordered_json readValue(SettingsApi& store, const KeyInfo& key)
{
    switch (key.kind->type) {
    case KeyType::Bool: return store.getBoolValue(key.name);
    case KeyType::Int32: return store.getInt32Value(key.name);
    case KeyType::Int64: return store.getInt64Value(key.name);
    // Proxies have their passwords in the text.
    case KeyType::String: return vx::str::toUtf8(vx::withoutProxyPassword(store.getStringValue(key.name)));
    case KeyType::Json: return vx::withoutProxyPasswords(store.getJsonValue(key.name));
    case KeyType::Untold: break;
    }
    return nullptr;
}

/// With "value" for a key that is set, or "trouble" for one that can't be read.
ordered_json describe(SettingsApi* store, const KeyInfo& key)
{
    ordered_json object{
        {"key", vx::str::toUtf8(key.name)}, {"type", vx::toText(key.kind->type)}, {"default", defaultOf(key)}};
    if (key.kind->unit)
        object["unit"] = key.kind->unit;
    try {
        if (key.kind->type != KeyType::Untold && !store)
            object["trouble"] = "the store can't be reached";
        else if (key.kind->type != KeyType::Untold)
            object["value"] = readValue(*store, key);
    } catch (const vx::settings::NotFoundException&) {
        // Not set: the default counts.
    } catch (const std::exception& exception) {
        object["trouble"] = health::textOf(exception);
    }
    return object;
}

std::string textOf(const ordered_json& value)
{
    if (value.is_array())
        return value.empty() ? "[]" : std::to_string(value.size()) + " elements";
    return value.is_null() ? "-" : value.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

void printKey(std::ostream& output, const ordered_json& key, bool isRead)
{
    output << std::left << std::setw(82) << key.at("key").get<std::string>() << std::setw(7)
           << key.at("type").get<std::string>();
    if (key.contains("trouble"))
        output << "can't be read: " << key.at("trouble").get<std::string>() << "  (default "
               << textOf(key.at("default")) << ')';
    else if (key.contains("value"))
        output << textOf(key.at("value"))
               << (key.at("value") == key.at("default") ? "" : "  (default " + textOf(key.at("default")) + ")");
    else
        output << textOf(key.at("default")) << (isRead ? "  (not set)" : "  (default)");
    output << (key.contains("unit") ? "  " + key.at("unit").get<std::string>() : "") << '\n';
}

ExitCode printKeys(const Context& context)
{
    std::shared_ptr<SettingsApi> store;
    std::string trouble;
    try {
        store = openStore();
    } catch (const std::exception& exception) {
        trouble = health::textOf(exception);
    }
    bool any = false;
    for (const auto& key : listKeys()) {
        const auto object = describe(store.get(), key);
        any |= object.contains("trouble");
        if (context.json)
            context.output << object.dump(-1, ' ', false, ordered_json::error_handler_t::replace) << '\n';
        else
            printKey(context.output, object, store && key.kind->type != KeyType::Untold);
    }
    if (!store)
        throw CommandError(ExitCode::Unreadable, "present values can't be read: " + trouble);
    return any ? ExitCode::Unreadable : ExitCode::Healthy;
}

} // namespace

void addTablesCommands(CLI::App& app, const Choose& choose)
{
    app.add_subcommand("keys", "print the store's keys with type, default, unit and present value")->callback([=] {
        choose(printKeys);
    });
    app.add_subcommand("codes", "print the agent's exit codes and what they mean")->callback([=] {
        choose(printCodes);
    });
}

} // namespace tarnctl
