#include "host/storecommands.h"

#include "host/printer.h"
#include "host/stopsignal.h"
#include "host/storemonitor.h"
#include "keys/keycatalogue.h"
#include "store/client/client.h"

#include <atomic>
#include <charconv>
#include <nlohmann/json.hpp>

namespace devhost::host {

namespace {

using nlohmann::json;
using store::Client;
using store::Value;

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

/// The seconds of an outage; nothing for a text that is no positive number.
std::optional<unsigned> parseSeconds(const std::string& text)
{
    unsigned seconds = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    const bool valid = error == std::errc() && end == text.data() + text.size() && seconds > 0 && seconds <= 86'400;
    return valid ? std::optional(seconds) : std::nullopt;
}

} // namespace

ExitCode getValue(const Context& context, const std::string& key)
{
    const auto value = Client(context.instance).get(key);
    if (!value)
        throw CommandError(ExitCode::Failed, "no value for the key " + key);
    context.printer.result(value->text(), describe(key, *value));
    return ExitCode::Done;
}

ExitCode setValue(const Context& context, const std::string& key, const std::string& text, const std::string& typeName)
{
    Client(context.instance).set(key, parseValue(key, text, typeFor(key, typeName)));
    return ExitCode::Done;
}

ExitCode deleteValue(const Context& context, const std::string& key)
{
    if (!Client(context.instance).remove(key))
        throw CommandError(ExitCode::Failed, "no value for the key " + key);
    return ExitCode::Done;
}

ExitCode listValues(const Context& context, const std::string& prefix)
{
    for (const auto& [key, value] : Client(context.instance).list(prefix)) {
        const auto type = value.type() == store::Type::Object ? "json" : vx::toText(value.type());
        context.printer.result(key + " (" + type + ") = " + value.text(), describe(key, value));
    }
    return ExitCode::Done;
}

ExitCode watchValues(const Context& context, const std::vector<std::string>& keys, unsigned count)
{
    Client values(context.instance);
    Client changes(context.instance);
    std::atomic<unsigned> told = 0;
    const auto print = [&](const store::Change& change) {
        if (count != 0 && told >= count)
            return;
        printChange(context.printer, values, change);
        if (++told == count)
            context.stop.set();
    };
    for (const auto& key : keys.empty() ? std::vector<std::string>{"*"} : keys)
        changes.subscribe(key, print);
    context.stop.wait(forever);
    return ExitCode::Done;
}

ExitCode enableFeature(const Context& context, bool enable)
{
    Client(context.instance).set(keyOf(keys::settings.enabled), Value::fromBool(enable));
    return ExitCode::Done;
}

ExitCode makeOutage(const Context& context, const std::string& what)
{
    const auto seconds = parseSeconds(what);
    if (!seconds && what != "on" && what != "off")
        throw CommandError(ExitCode::BadUsage, "outage: \"" + what + "\" is neither on, off nor a number of seconds");
    Client client(context.instance);
    client.setRefuse(what != "off");
    if (!seconds)
        return ExitCode::Done;
    context.printer.event("outage", "the store refuses all programs", {{"refuse", true}});
    context.stop.wait(*seconds * 1000);
    client.setRefuse(false);
    context.printer.event("outage", "the store answers again", {{"refuse", false}});
    return ExitCode::Done;
}

ExitCode planFault(
    const Context& context, const std::string& operation, int code, unsigned count, const std::string& key)
{
    if (operation != "clear" && code == 0)
        throw CommandError(ExitCode::BadUsage, "fault: give the error CODE that the calls are to end with");
    Client client(context.instance);
    if (operation == "clear")
        client.clearFaults();
    else
        client.addFault({store::parseOperation(operation), static_cast<store::ErrorCode>(code), count, key});
    const auto state = toJson(client.faultState());
    context.printer.result("planned: " + state.dump(), state);
    return ExitCode::Done;
}

} // namespace devhost::host
