#include "host/commands.h"
#include "host/printer.h"
#include "host/testmachine.h"
#include "machine/localnow.h"
#include "program/program.h"
#include "service/trigger.h"
#include "service/updateservice.h"
#include "vxtl/str.h"

#include <charconv>
#include <map>
#include <nlohmann/json.hpp>

namespace devhost::host {

namespace {

using nlohmann::json;
using service::StopTime;
using service::UpdateService;

struct ServiceOptions : MachineOptions {
    std::string action = "state";
    unsigned seconds = 15;
};

struct TriggerOptions : MachineOptions {
    std::string time;
    std::string type = vx::toText(service::TriggerType::Qword);
};

using Action = void (*)(UpdateService& service, const ServiceOptions& options);

const std::map<std::string, Action> actions{
    {"state", [](auto&, auto&) {}},
    {"start", [](auto& service, auto&) { service.run(std::chrono::seconds(0)); }},
    {"slow", [](auto& service, auto& options) { service.run(std::chrono::seconds(options.seconds)); }},
    {"stubborn", [](auto& service, auto&) { service.run(std::nullopt); }},
    {"stop", [](auto& service, auto&) { service.stop(); }},
    {"missing", [](auto& service, auto&) { service.remove(); }},
    {"restore", [](auto& service, auto&) { service.giveBack(); }},
};

std::string stateText(const UpdateService& service)
{
    static constexpr const char* texts[] = {
        "unknown", "stopped", "starting", "stopping", "running", "resuming", "pausing", "paused"};
    return service.player() == service::Player::Nobody ? "missing" : texts[static_cast<std::size_t>(service.state())];
}

std::string answerText(const StopTime& stop)
{
    if (!stop)
        return "refuses to stop";
    return stop->count() == 0 ? "stops at once" : "stops within " + std::to_string(stop->count()) + " seconds";
}

void show(Printer& printer, const UpdateService& service)
{
    const auto player = service.player();
    const auto name = vx::str::toUtf8(service::serviceName);
    json object{{"service", name}, {"state", stateText(service)}, {"player", vx::toText(player)}};
    auto text = name + ": " + stateText(service);
    if (player == service::Player::StandIn) {
        const auto stop = service::readStopTime();
        object["stop_seconds"] = stop ? json(stop->count()) : json();
        text += ", played by the stand-in";
        text += service.state() == vx::ServiceState::Stopped ? "" : ", which " + answerText(stop);
    }
    printer.result(text, object);
}

ExitCode workOnService(const Context& context, const ServiceOptions& options)
{
    requireTestMachine(options);
    UpdateService service(program::ownFolder() / "wuservice.exe");
    actions.at(options.action)(service, options);
    show(context.printer, service);
    return ExitCode::Done;
}

/// Since the Unix epoch.
std::int64_t secondsOf(const std::string& text)
{
    std::int64_t seconds = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    if (error == std::errc() && end == text.data() + text.size())
        return seconds;
    const auto moment = text.empty() ? machine::utcNow() : machine::parseBoundary(text);
    if (!moment)
        throw CommandError(ExitCode::BadUsage,
            "wus-trigger: \"" + text + "\" is neither none nor seconds nor a time like 2026-01-31T12:00:00");
    return moment->time_since_epoch().count();
}

ExitCode workOnTrigger(const Context& context, const TriggerOptions& options)
{
    requireTestMachine(options);
    if (options.time == "none") {
        const bool found = service::deleteTrigger();
        context.printer.result(found ? "the key is gone" : "there was no key", {{"found", found}});
        return ExitCode::Done;
    }
    const auto created = secondsOf(options.time);
    service::makeTrigger(created, vx::fromText<service::TriggerType>(std::string_view(options.type)));
    context.printer.result(
        "the key is there; the time to the reboot began at " + std::to_string(created) + " (" + options.type + ")",
        {{"created_time", created}, {"type", options.type}});
    return ExitCode::Done;
}

} // namespace

void serviceCommands(Commands& commands)
{
    const auto [play, options] =
        commands.add("service", "say how the Windows Update service is, or put a stand-in in its place", workOnService);
    play->add_option("ACTION", options.action,
            "state: say how it is, as without one; start: it runs and stops when it is told to; slow: it takes its "
            "time for that; stubborn: it refuses; "
            "stop: it does not run; missing: there is none; restore: the system's own is back")
        ->check(CLI::IsMember(&actions));
    play->add_option("--seconds", options.seconds, "how long a slow one takes")
        ->check(waitableSeconds)
        ->capture_default_str();
    addTestMachine(play, options);

    const auto [trigger, triggerOptions] = commands.add(
        "wus-trigger", "make the key by which the plug-in is asked to stop the Windows Update service", workOnTrigger);
    trigger->add_option("TIME|none", triggerOptions.time,
        "when the time to the reboot began, in UTC, like 2026-01-31T12:00:00, or in seconds since 1970; now without "
        "it; none deletes the key");
    trigger
        ->add_option("--type", triggerOptions.type,
            "how that is written: qword (default), dword or string, which the plug-in refuses, or none")
        ->check(CLI::IsMember({"qword", "dword", "string", "none"}));
    addTestMachine(trigger, triggerOptions);
}

} // namespace devhost::host
