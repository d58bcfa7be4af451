#include "host/host.h"

#include "host/agentdirectory.h"
#include "host/agentprocess.h"
#include "host/bootatom.h"
#include "host/control.h"
#include "host/printer.h"
#include "host/recordmonitor.h"
#include "host/stopsignal.h"
#include "host/storemonitor.h"
#include "host/systemtext.h"
#include "ipc/instance.h"
#include "ipc/listener.h"
#include "store/server/server.h"
#include "vxtl/clock.h"
#include "vxtl/str.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <windows.h>

namespace devhost::host {

namespace {

using nlohmann::json;

constexpr auto pluginName = "tarnhd";

void showServing(const Context& context, const store::Server& server)
{
    const auto file = toText(server.file());
    context.printer.event("store", "serving the store " + file, {{"file", file}});
}

} // namespace

Host::Host(const Context& context, HostOptions options) : m_context(context), m_options(std::move(options)) {}

ExitCode Host::run()
{
    // First, so that a second host of the instance ends before it disturbs anything.
    const auto lock = ipc::lockPart(m_context.instance, L"host");
    if (!lock)
        throw CommandError(ExitCode::AlreadyRunning,
            "a host of the instance \"" + vx::str::toUtf8(m_context.instance) + "\" is already running");
    prepare();
    std::optional<store::Server> server;
    if (m_options.store) {
        server.emplace(m_options.store->native(), m_context.instance);
        server->start();
        showServing(m_context, *server);
    }
    StoreMonitor monitor(m_context.instance, m_context.printer,
        m_options.provideProfile ? StoreMonitor::Profile::Provide : StoreMonitor::Profile::LeaveAlone);
    const RecordMonitor records(m_context.instance, m_context.printer);
    m_rebootCatch.emplace([this](const RebootRequest& request) { return onRebootRequest(request); });
    startPlugin();
    auto control = serveControl(m_context.instance, [this](const json& request) { return handle(request); });
    const ipc::Signal ready(ipc::objectName(m_context.instance, L"ready"));
    ready.set();
    waitForStop();
    ready.reset();
    // A request that is being carried out is finished first.
    control.reset();
    if (m_session && !stopPlugin()) {
        // Its threads still run its code: nothing that they may use can be taken apart any more.
        TerminateProcess(GetCurrentProcess(), static_cast<UINT>(ExitCode::Failed));
    }
    return m_failed ? ExitCode::Failed : ExitCode::Done;
}

void Host::waitForStop()
{
    const auto end = m_options.runTime ? std::optional(vx::uptime() + *m_options.runTime) : std::nullopt;
    const auto timeLeft = [&] {
        const auto left = end ? std::max(*end - vx::uptime(), std::chrono::milliseconds(0)).count() : ipc::forever;
        return static_cast<unsigned long>(left);
    };
    while (m_context.stop.waitOr(m_rebootWanted, timeLeft()) && !m_context.stop.isSet()) {
        m_rebootWanted.reset();
        playReboot();
    }
}

RebootCatch::Answer Host::onRebootRequest(const RebootRequest& request)
{
    static constexpr struct {
        const char* name;
        const char* text;
    } fates[] = {{"hold", "held"}, {"play", "to be played"}, {"real", "left to the system"}};
    const auto& fate = fates[static_cast<std::size_t>(m_options.reboots)];
    m_context.printer.event("reboot request", std::string("the plug-in asks for a reboot: ") + fate.text,
        {{"flags", request.flags}, {"reason", request.reason}, {"reboots", fate.name}});
    const std::lock_guard lock(m_stateMutex);
    ++m_rebootRequests;
    if (m_options.reboots == Reboots::Real)
        return RebootCatch::Answer::FromSystem;
    // Not here: a reboot ends the plug-in, which waits for this very thread.
    if (m_options.reboots == Reboots::Play)
        m_rebootWanted.set();
    return RebootCatch::Answer::Begun;
}

// By the way that a user takes, as requests exclude each other.
void Host::playReboot()
{
    try {
        callHost(m_context.instance, {{"command", "reboot"}});
    } catch (const CommandError& error) {
        m_context.printer.event("error", error.what(), {{"error", error.what()}});
    }
}

void Host::prepare()
{
    ipc::exportInstance(m_context.instance);
    if (m_options.agentDirectory && !is_directory(*m_options.agentDirectory))
        throw CommandError(ExitCode::BadUsage, "there is no folder " + toText(*m_options.agentDirectory));
    if (m_options.agentDirectory)
        writeAgentDirectory(*m_options.agentDirectory);
    const auto folder = readAgentDirectory();
    if (!folder || !exists(*folder / "tarnag.exe"))
        m_context.printer.event("warning", "no tarnag.exe in the agent's folder: scans will fail (see --agent-dir)",
            {{"warning", "no agent"}});
}

void Host::startPlugin()
{
    if (PluginLoader::isLoaded(m_options.plugin))
        m_context.printer.event(
            "warning", "the plug-in is still in memory and keeps its old state", {{"warning", "plug-in still loaded"}});
    m_session.emplace(m_options.plugin, pluginName, m_options.recordSize,
        PluginSession::Listener{[this](const std::string& plugin, std::uint32_t state) { onState(plugin, state); },
            [this](std::uint32_t code) { onMainEnded(code); }},
        *m_options.conduct);
    m_context.printer.event("loaded", "loaded " + toText(m_options.plugin), {{"plugin", toText(m_options.plugin)}});
    if (!m_session->isRecordIntact()) {
        m_failed = true;
        m_context.printer.event("error", "the plug-in wrote past its record", {{"error", "record overrun"}});
    }
    const std::lock_guard lock(m_stateMutex);
    m_state = "loaded";
    m_result.reset();
    m_session->start();
}

bool Host::stopPlugin()
{
    const auto stopResult = m_session->stop();
    m_context.printer.event("stop", "stop callback returned " + std::to_string(stopResult), {{"code", stopResult}});
    const auto result = m_session->waitForEnd(m_options.stopTimeout);
    if (!result) {
        m_failed = true;
        m_context.printer.event("error", "the plug-in does not end", {{"error", "plug-in does not end"}});
        return false;
    }
    // A stop after the plug-in's own end finds nobody: that alone is no failure.
    m_failed = m_failed || *result != 0;
    m_session.reset();
    m_context.printer.event("unloaded", "unloaded", json::object());
    const std::lock_guard lock(m_stateMutex);
    m_state = "not loaded";
    return true;
}

PluginSession& Host::session()
{
    if (!m_session)
        throw CommandError(ExitCode::Failed, "no plug-in is loaded");
    return *m_session;
}

json Host::handle(const json& request)
{
    const auto command = request.at("command").get<std::string>();
    if (command == "status")
        return status();
    if (command == "restart")
        return restart();
    if (command == "reboot")
        return reboot();
    if (command == "stop")
        m_context.stop.set();
    else if (command == "resume")
        session().resume();
    else if (command == "session")
        session().sessionEvent(request.at("type").get<std::uint32_t>(), request.at("data").get<std::uint32_t>());
    else
        throw CommandError(ExitCode::BadUsage, "unknown command " + command);
    m_context.printer.event("command", "command: " + command, {{"command", request}});
    return {{"text", "done"}};
}

json Host::status()
{
    const std::lock_guard lock(m_stateMutex);
    return {{"pid", GetCurrentProcessId()}, {"plugin", toText(m_options.plugin)}, {"size", m_options.recordSize},
        {"state", m_state}, {"result", m_result ? json(*m_result) : json()}, {"reboot_requests", m_rebootRequests},
        {"store", m_options.store ? json(toText(*m_options.store)) : json()}};
}

json Host::restart()
{
    if (m_session && !stopPlugin())
        throw CommandError(ExitCode::TimedOut, "the plug-in does not end, so it is not loaded anew");
    startPlugin();
    return {{"text", "the plug-in was loaded anew"}};
}

json Host::reboot()
{
    if (m_session && !stopPlugin())
        throw CommandError(ExitCode::TimedOut, "the plug-in does not end, so there is no reboot");
    m_context.printer.event("reboot", "reboot", json::object());
    std::optional<unsigned long> code;
    std::optional<CommandError> failure;
    try {
        forgetBoot();
        code = runBootWork();
    } catch (const CommandError& error) {
        failure = error;
    }
    // Whatever became of that, the computer comes up again.
    startPlugin();
    if (failure)
        throw *failure;
    if (code.value_or(0) != 0)
        throw CommandError(ExitCode::Failed, "the agent did not finish the deployment: exit code " +
                                                 std::to_string(*code) + "; the plug-in was loaded anew");
    return {{"text", code ? "rebooted: the agent finished the deployment, and the plug-in was loaded anew"
                          : "rebooted: no deployment waited for it, and the plug-in was loaded anew"},
        {"deployment_finished", code.has_value()}};
}

void Host::onState(const std::string& plugin, std::uint32_t state)
{
    const std::string name = state == 1 ? "started" : state == 0 ? "stopped" : "state " + std::to_string(state);
    m_context.printer.event("state", plugin + " reports: " + name, {{"plugin", plugin}, {"state", state}});
    const std::lock_guard lock(m_stateMutex);
    m_state = name;
}

void Host::onMainEnded(std::uint32_t code)
{
    m_context.printer.event("main", "main callback returned " + std::to_string(code), {{"code", code}});
    const std::lock_guard lock(m_stateMutex);
    m_result = code;
}

ExitCode serveStore(const Context& context, const std::filesystem::path& file)
{
    store::Server server(file.native(), context.instance);
    server.start();
    showServing(context, server);
    context.stop.wait(ipc::forever);
    server.stop();
    return ExitCode::Done;
}

} // namespace devhost::host
