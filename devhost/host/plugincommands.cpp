#include "host/agentprocess.h"
#include "host/bootatom.h"
#include "host/commands.h"
#include "host/control.h"
#include "host/printer.h"
#include "host/systemtext.h"
#include "vxtl/handle.h"

#include <nlohmann/json.hpp>
#include <windows.h>

namespace devhost::host {

namespace {

struct SessionOptions {
    std::uint32_t type = 0, data = 0;
};

constexpr std::chrono::minutes endTimeout(1);

ExitCode call(const Context& context, const nlohmann::json& message)
{
    const auto reply = callHost(context.instance, message);
    context.printer.result(reply.value("text", "done"), reply);
    return ExitCode::Done;
}

ExitCode stopHost(const Context& context)
{
    const auto status = callHost(context.instance, {{"command", "status"}});
    // Opened before the request: afterwards the process may be gone already.
    const vx::KernelHandle host(
        OpenProcess(SYNCHRONIZE | PROCESS_QUERY_LIMITED_INFORMATION, FALSE, status.at("pid").get<DWORD>()));
    if (!host.isValid())
        throw CommandError(ExitCode::Failed, "cannot watch the host's process: " + systemText(GetLastError()));
    callHost(context.instance, {{"command", "stop"}});
    const auto code = waitForExit(host.get(), endTimeout);
    if (!code)
        throw CommandError(ExitCode::TimedOut, "the host has not ended within a minute");
    context.printer.result("the host has ended with " + std::to_string(*code), {{"exit_code", *code}});
    return *code == 0 ? ExitCode::Done : ExitCode::Failed;
}

ExitCode sendSessionEvent(const Context& context, const SessionOptions& options)
{
    return call(context, {{"command", "session"}, {"type", options.type}, {"data", options.data}});
}

ExitCode forgetBootAtom(const Context& context)
{
    const bool found = forgetBoot();
    context.printer.result(found ? "the next start of the plug-in counts as the first since the boot"
                                 : "the plug-in has not run since the boot",
        {{"found", found}});
    return ExitCode::Done;
}

} // namespace

void pluginCommands(Commands& commands)
{
    const auto ask = [](const char* command) {
        return [command](const Context& context) { return call(context, {{"command", command}}); };
    };
    commands.add("stop", "end the running host and wait for its end", stopHost);
    commands.add("restart", "let the running host stop the plug-in, unload it and load it anew", ask("restart"));
    commands.add("reboot", "let the running host play a reboot: plug-in anew, and the agent finishes what waits for it",
        ask("reboot"));
    commands.add("resume-event", "tell the plug-in that the computer woke up", ask("resume"));
    const auto [session, options] =
        commands.add("session-event", "tell the plug-in of a session change", sendSessionEvent);
    session->add_option("TYPE", options.type, "number of the change")->required();
    session->add_option("DATA", options.data, "number of the session");
    commands.add("forget-boot", "let the plug-in's next start count as the first since the boot", forgetBootAtom);
}

} // namespace devhost::host
