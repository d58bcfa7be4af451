#include "host/commands.h"
#include "host/printer.h"
#include "host/stopsignal.h"
#include "host/storemonitor.h"
#include "keys/keycatalogue.h"
#include "store/client/client.h"
#include "vxtl/clock.h"

#include <nlohmann/json.hpp>

namespace devhost::host {

namespace {

using store::Client;
using store::Value;

struct ScanOptions {
    std::optional<unsigned> waitSeconds;
};

struct InstallOptions {
    std::string text;
    std::optional<unsigned> waitSeconds;
};

/// A request by a pair of counters: one more in `start` opens it, and it is closed when `ack` equals `start`.
class Request {
public:
    Request(const Context& context, std::string startKey, std::string ackKey)
        : m_context(context), m_startKey(std::move(startKey)), m_ackKey(std::move(ackKey)),
          m_number(counter(m_startKey) + 1)
    {}

    void open()
    {
        m_values.set(m_startKey, Value::fromInt64(m_number));
        m_context.printer.event("request", "request " + std::to_string(m_number) + " is open", {{"start", m_number}});
    }

    /// Waits, by the store's notifications, until it is closed; shows the status values that change meanwhile.
    void openAndWait(unsigned seconds)
    {
        const auto begin = vx::uptime();
        ipc::Signal closed;
        Client changes(m_context.instance);
        changes.subscribe(m_ackKey, [&](const store::Change&) {
            // A newer request of somebody else closes this one, too.
            const auto ack = counter(m_ackKey);
            if (ack == m_number || ack == counter(m_startKey))
                closed.set();
        });
        changes.subscribe("status.windows.tarnpatch.*",
            [&](const store::Change& change) { printChange(m_context.printer, m_values, change); });
        open();
        if (!closed.waitOr(m_context.stop, seconds * 1000))
            throw CommandError(ExitCode::TimedOut, "no acknowledgement within " + std::to_string(seconds) + " seconds");
        if (!closed.isSet())
            throw CommandError(ExitCode::Failed, "stopped before the acknowledgement");
        const auto taken = (vx::uptime() - begin).count();
        m_context.printer.event("acknowledged",
            "request " + std::to_string(m_number) + " was acknowledged after " + std::to_string(taken) + " ms",
            {{"ack", m_number}, {"milliseconds", taken}});
    }

private:
    std::int64_t counter(const std::string& key)
    {
        const auto value = m_values.get(key);
        return value ? value->asInt64() : 0;
    }

    const Context& m_context;
    std::string m_startKey, m_ackKey;
    Client m_values{m_context.instance};
    std::int64_t m_number;
};

void perform(Request request, std::optional<unsigned> waitSeconds)
{
    if (waitSeconds)
        request.openAndWait(*waitSeconds);
    else
        request.open();
}

ExitCode requestScan(const Context& context, const ScanOptions& options)
{
    const auto& rows = keys::settings.remoteOperations.scanForUpdates;
    perform({context, keyOf(rows.start), keyOf(rows.ack)}, options.waitSeconds);
    const auto enabled = Client(context.instance).get(keyOf(keys::status.enabled));
    if (enabled && *enabled == Value::fromBool(false))
        context.printer.event("warning", "the feature is off: requests are closed without a scan (see enable)",
            {{"warning", "feature off"}});
    return ExitCode::Done;
}

ExitCode requestInstallation(const Context& context, const InstallOptions& options)
{
    const auto& rows = keys::settings.remoteOperations.installUpdates;
    Client client(context.instance);
    client.set(keyOf(rows.updatesToInstall), Value::fromString(options.text));
    perform({context, keyOf(rows.start), keyOf(rows.ack)}, options.waitSeconds);
    const auto result = options.waitSeconds ? client.get(keyOf(rows.result)) : std::nullopt;
    if (result)
        context.printer.event("result", "result: " + result->text(), {{"result", result->text()}});
    return ExitCode::Done;
}

Commands::Action setFeature(bool on)
{
    return [on](const Context& context) {
        Client(context.instance).set(keyOf(keys::settings.enabled), Value::fromBool(on));
        return ExitCode::Done;
    };
}

} // namespace

void requestCommands(Commands& commands)
{
    constexpr auto waitHelp = "wait that many seconds at most for the acknowledgement";
    const auto [scan, scanOptions] = commands.add("scan", "request a scan", requestScan);
    scan->add_option("--wait", scanOptions.waitSeconds, waitHelp)->check(waitableSeconds);

    const auto [install, installOptions] = commands.add("install", "request an installation", requestInstallation);
    install->add_option("TEXT", installOptions.text, "what to install; empty: what the automatic mode says")
        ->required();
    install->add_option("--wait", installOptions.waitSeconds, waitHelp)->check(waitableSeconds);

    commands.add("enable", "switch the feature on", setFeature(true));
    commands.add("disable", "switch the feature off", setFeature(false));
}

} // namespace devhost::host
