#include "host/commands.h"
#include "host/printer.h"
#include "host/stopsignal.h"
#include "host/storemonitor.h"
#include "keys/keycatalogue.h"
#include "store/client/client.h"

#include <atomic>
#include <nlohmann/json.hpp>

namespace devhost::host {

namespace {

using nlohmann::json;
using store::Client;
using store::Value;

struct KeyOptions {
    std::string key;
};

struct SetOptions {
    std::string key, text, typeName;
};

struct WatchOptions {
    std::vector<std::string> keys;
    unsigned count = 0;
};

json describe(const std::string& key, const Value& value)
{
    json object = value.toJson();
    object["key"] = key;
    return object;
}

store::Type typeFor(const std::string& key, const std::string& typeName)
{
    const auto type = typeName.empty() ? typeOfKey(key) : typeFromName(typeName);
    if (type)
        return *type;
    throw CommandError(ExitCode::BadUsage,
        typeName.empty() ? "unknown key " + key + ": give its type with --type" : "unknown type " + typeName);
}

Value parseValue(const std::string& key, const std::string& text, store::Type type)
{
    try {
        return Value::parse(text, type);
    } catch (const store::StoreException& exception) {
        throw CommandError(ExitCode::BadUsage, key + ": " + exception.what());
    }
}

ExitCode getValue(const Context& context, const KeyOptions& options)
{
    const auto value = Client(context.instance).get(options.key);
    if (!value)
        throw CommandError(ExitCode::Failed, "no value for the key " + options.key);
    context.printer.result(value->text(), describe(options.key, *value));
    return ExitCode::Done;
}

ExitCode setValue(const Context& context, const SetOptions& options)
{
    Client(context.instance)
        .set(options.key, parseValue(options.key, options.text, typeFor(options.key, options.typeName)));
    return ExitCode::Done;
}

ExitCode deleteValue(const Context& context, const KeyOptions& options)
{
    if (!Client(context.instance).remove(options.key))
        throw CommandError(ExitCode::Failed, "no value for the key " + options.key);
    return ExitCode::Done;
}

ExitCode listValues(const Context& context, const KeyOptions& options)
{
    for (const auto& [key, value] : Client(context.instance).list(options.key)) {
        const auto type = value.type() == store::Type::Object ? "json" : vx::toText(value.type());
        const auto shown = forShow(value);
        context.printer.result(key + " (" + type + ") = " + shown.text(), describe(key, shown));
    }
    return ExitCode::Done;
}

ExitCode watchValues(const Context& context, const WatchOptions& options)
{
    Client values(context.instance);
    std::atomic<unsigned> told = 0;
    // Of its own: the other answers while this one's thread is in the callback. Last, so that the callback ends first.
    Client changes(context.instance);
    const auto print = [&](const store::Change& change) {
        // Changes may still come between the signal and the end of this command.
        if (options.count != 0 && told >= options.count)
            return;
        printChange(context.printer, values, change);
        if (++told == options.count)
            context.stop.set();
    };
    for (const auto& key : options.keys.empty() ? std::vector<std::string>{"*"} : options.keys)
        changes.subscribe(key, print);
    context.stop.wait(ipc::forever);
    return ExitCode::Done;
}

} // namespace

void valueCommands(Commands& commands)
{
    const auto [get, getOptions] = commands.add("get", "print a value", getValue);
    get->add_option("KEY", getOptions.key)->required();

    const auto [set, setOptions] = commands.add("set", "write a value", setValue);
    set->add_option("KEY", setOptions.key)->required();
    set->add_option("VALUE", setOptions.text)->required();
    set->add_option("--type", setOptions.typeName, "type of a key that is not the product's own")
        ->check(CLI::IsMember({"bool", "int32", "int64", "string", "json"}));

    const auto [remove, removeOptions] = commands.add("delete", "remove a value", deleteValue);
    remove->add_option("KEY", removeOptions.key)->required();

    const auto [list, listOptions] = commands.add("keys", "print all values", listValues);
    list->add_option("PREFIX", listOptions.key, "only keys that begin with it");

    const auto [watch, watchOptions] = commands.add("watch", "print changes until Ctrl-C", watchValues);
    watch->add_option("KEY", watchOptions.keys, "which keys; a closing * stands for any rest; all without it");
    watch->add_option("--count", watchOptions.count, "end after that many changes")->check(CLI::PositiveNumber);
}

} // namespace devhost::host
