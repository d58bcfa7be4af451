#include "host/commands.h"
#include "host/printer.h"
#include "host/stopsignal.h"
#include "store/client/client.h"

#include <charconv>
#include <nlohmann/json.hpp>

namespace devhost::host {

namespace {

struct OutageOptions {
    std::string what;
};

struct FaultOptions {
    std::string kind, key;
    int code = 0;
    unsigned count = 1;
};

/// The seconds of an outage; nothing for a text that is no positive number.
std::optional<unsigned> parseSeconds(const std::string& text)
{
    unsigned seconds = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    const bool valid = error == std::errc() && end == text.data() + text.size() && seconds > 0 && seconds <= 86'400;
    return valid ? std::optional(seconds) : std::nullopt;
}

ExitCode makeOutage(const Context& context, const OutageOptions& options)
{
    const auto& what = options.what;
    const auto seconds = parseSeconds(what);
    if (!seconds && what != "on" && what != "off")
        throw CommandError(ExitCode::BadUsage, "outage: \"" + what + "\" is neither on, off nor a number of seconds");
    store::Client client(context.instance);
    client.setRefuse(what != "off");
    if (!seconds)
        return ExitCode::Done;
    context.printer.event("outage", "the store refuses all programs", {{"refuse", true}});
    context.stop.wait(*seconds * 1000);
    client.setRefuse(false);
    context.printer.event("outage", "the store answers again", {{"refuse", false}});
    return ExitCode::Done;
}

ExitCode planFault(const Context& context, const FaultOptions& options)
{
    if (options.kind != "clear" && options.code == 0)
        throw CommandError(ExitCode::BadUsage, "fault: give the error CODE that the calls are to end with");
    store::Client client(context.instance);
    if (options.kind == "clear")
        client.clearFaults();
    else
        client.addFault({store::parseOperation(options.kind), static_cast<store::ErrorCode>(options.code),
            options.count, options.key});
    const auto state = toJson(client.faultState());
    context.printer.result("planned: " + state.dump(), state);
    return ExitCode::Done;
}

} // namespace

void faultCommands(Commands& commands)
{
    const auto [outage, outageOptions] =
        commands.add("outage", "let the store be unreachable for all programs but tarnhost", makeOutage);
    outage->add_option("SECONDS|on|off", outageOptions.what)->required();

    const auto [fault, options] = commands.add("fault", "let the next calls to the store fail", planFault);
    fault->add_option("KIND", options.kind, "get, set, subscribe, unsubscribe, open, all; clear forgets all plans")
        ->required()
        ->check(CLI::IsMember({"get", "set", "subscribe", "unsubscribe", "open", "all", "clear"}));
    fault->add_option("CODE", options.code, "the error code that the calls end with")->check(CLI::PositiveNumber);
    fault->add_option("--count", options.count, "how many calls")->check(CLI::PositiveNumber)->capture_default_str();
    fault->add_option("--key", options.key, "only calls for this key");
}

} // namespace devhost::host
