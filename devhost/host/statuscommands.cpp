#include "common/utils/timetext.h"
#include "host/agentdirectory.h"
#include "host/commands.h"
#include "host/control.h"
#include "host/printer.h"
#include "host/systemtext.h"
#include "ipc/instance.h"
#include "ipc/signal.h"
#include "keys/keycatalogue.h"
#include "store/client/client.h"
#include "vxtl/parsejson.h"
#include "vxtl/str.h"

#include <nlohmann/json.hpp>

namespace devhost::host {

namespace {

using nlohmann::json;

struct StatusOptions {
    unsigned waitSeconds = 0;
};

json hostPart(const Context& context)
{
    try {
        return callHost(context.instance, {{"command", "status"}});
    } catch (const CommandError& error) {
        if (error.code() != ExitCode::NotRunning)
            throw;
        return nullptr;
    }
}

json readKey(store::Client& client, const vx::tarn::KeyRow& key)
{
    const auto value = client.get(keyOf(key));
    if (!value)
        return nullptr;
    if (value->type() != store::Type::Object)
        return value->toJson().at("value");
    try {
        return vx::parseJson(value->asObject());
    } catch (const json::exception&) {
        return value->asObject();
    }
}

json storePart(const Context& context)
{
    try {
        store::Client client(context.instance);
        const auto& remote = keys::settings.remoteOperations;
        const auto missing = readKey(client, keys::status.scanning.lastScanning.missingUpdates);
        const auto toInstall = readKey(client, keys::settings.currentStatus.patchesToInstall);
        const auto queue = readKey(client, keys::settings.installation.deploymentQueue);
        return {{"enabled_setting", readKey(client, keys::settings.enabled)},
            {"enabled_status", readKey(client, keys::status.enabled)},
            {"profile", readKey(client, keys::host.lastSuccessfulUpdateTimestamp)},
            {"scan", {{"start", readKey(client, remote.scanForUpdates.start)},
                         {"ack", readKey(client, remote.scanForUpdates.ack)}}},
            {"install", {{"start", readKey(client, remote.installUpdates.start)},
                            {"ack", readKey(client, remote.installUpdates.ack)},
                            {"result", readKey(client, remote.installUpdates.result)}}},
            {"last_scan", readKey(client, keys::status.scanning.lastScanning.timestamp)},
            {"missing_updates", missing.is_array() ? json(missing.size()) : json()},
            {"patches_to_install", toInstall.is_array() ? json(toInstall.size()) : json()},
            {"queue", queue.is_null()    ? json(0)
                      : queue.is_array() ? json(queue.size())
                                         : json()}};
    } catch (const store::StoreException& exception) {
        if (exception.code() != store::ErrorCode::Unreachable)
            throw;
        return nullptr;
    }
}

json agentPart()
{
    const auto folder = readAgentDirectory();
    if (!folder)
        return nullptr;
    json runs = json::array();
    for (const auto& start : readAgentStarts(*folder))
        runs.push_back({{"time", start.time}, {"pid", start.pid}, {"arguments", start.arguments},
            {"exit_code", start.exitCode ? json(*start.exitCode) : json()}});
    return {{"folder", toText(*folder)}, {"runs", std::move(runs)}};
}

/// Values that are not there print as "not set".
std::string plain(const json& value)
{
    return value.is_null() ? "not set" : value.is_string() ? value.get<std::string>() : value.dump();
}

std::string timeText(const json& seconds)
{
    if (!seconds.is_number_integer() || seconds.get<std::int64_t>() < 0)
        return "never";
    return vx::str::toUtf8(vx::tarn::common::utils::timeToString(seconds.get<std::int64_t>()));
}

std::string requestText(const json& pair)
{
    const bool open = pair.at("start") != pair.at("ack") && !pair.at("start").is_null();
    return "start " + plain(pair.at("start")) + ", ack " + plain(pair.at("ack")) + (open ? " (open)" : "");
}

void printStore(Printer& printer, const json& store)
{
    if (store.is_null())
        return printer.line("store:      not running");
    printer.line(
        "enabled:    setting " + plain(store.at("enabled_setting")) + ", status " + plain(store.at("enabled_status")));
    printer.line("profile:    " + plain(store.at("profile")));
    printer.line("scan:       " + requestText(store.at("scan")) + ", last " + timeText(store.at("last_scan")));
    printer.line(
        "install:    " + requestText(store.at("install")) + ", result " + plain(store.at("install").at("result")));
    printer.line("updates:    missing " + plain(store.at("missing_updates")) + ", published " +
                 plain(store.at("patches_to_install")) + ", queued requests " + plain(store.at("queue")));
}

void printAgent(Printer& printer, const json& agent)
{
    constexpr std::size_t shown = 5;
    if (agent.is_null())
        return printer.line("agent:      no folder in the registry (run --agent-dir)");
    const auto& runs = agent.at("runs");
    printer.line("agent:      " + std::to_string(runs.size()) + " starts in " + plain(agent.at("folder")));
    for (auto i = runs.size() > shown ? runs.size() - shown : 0; i < runs.size(); ++i) {
        const auto& run = runs[i];
        const auto arguments = plain(run.at("arguments"));
        printer.line("            " + plain(run.at("time")) + "  pid " + plain(run.at("pid")) +
                     (arguments.empty() ? "" : "  " + arguments) +
                     (run.at("exit_code").is_null() ? "  not ended" : "  exit code " + plain(run.at("exit_code"))));
    }
}

ExitCode showStatus(const Context& context, const StatusOptions& options)
{
    if (options.waitSeconds > 0)
        ipc::Signal(ipc::objectName(context.instance, L"ready")).wait(options.waitSeconds * 1000);
    const json status = {{"instance", toText(context.instance)}, {"host", hostPart(context)},
        {"store", storePart(context)}, {"agent", agentPart()}};
    const auto& host = status.at("host");
    auto& printer = context.printer;
    if (printer.isJson()) {
        printer.result({}, status);
    } else {
        printer.line("host:       " + (host.is_null() ? "not running" : "process " + plain(host.at("pid"))));
        if (!host.is_null())
            printer.line("plug-in:    " + plain(host.at("state")) + ", " + plain(host.at("plugin")) + ", record size " +
                         plain(host.at("size")));
        if (!host.is_null() && host.at("reboot_requests") != 0)
            printer.line("reboots:    asked for " + plain(host.at("reboot_requests")) + " times");
        printStore(printer, status.at("store"));
        printAgent(printer, status.at("agent"));
    }
    return host.is_null() ? ExitCode::NotRunning : ExitCode::Done;
}

} // namespace

void statusCommands(Commands& commands)
{
    const auto [status, options] = commands.add("status", "an overview of host, plug-in, store and agent", showStatus);
    status->add_option("--wait", options.waitSeconds, "wait that many seconds at most for the host to be up")
        ->check(waitableSeconds);
}

} // namespace devhost::host
