#include "host/hostcommands.h"

#include "host/bootatom.h"
#include "host/controlclient.h"
#include "host/printer.h"
#include "host/remoteoperation.h"
#include "host/systemtext.h"
#include "keys/keycatalogue.h"

#include <nlohmann/json.hpp>
#include <windows.h>

namespace devhost::host {

namespace {

constexpr DWORD endTimeoutMs = 60'000;

/// Another process, watched to its end.
class WatchedProcess {
public:
    explicit WatchedProcess(DWORD id)
        : m_process(OpenProcess(SYNCHRONIZE | PROCESS_QUERY_LIMITED_INFORMATION, FALSE, id))
    {
        if (!m_process)
            throw CommandError(ExitCode::Failed, "cannot watch the host's process: " + systemText(GetLastError()));
    }
    ~WatchedProcess() { CloseHandle(m_process); }
    WatchedProcess(const WatchedProcess&) = delete;
    WatchedProcess& operator=(const WatchedProcess&) = delete;

    DWORD waitForEnd()
    {
        if (WaitForSingleObject(m_process, endTimeoutMs) != WAIT_OBJECT_0)
            throw CommandError(ExitCode::TimedOut, "the host has not ended within a minute");
        DWORD code = 0;
        GetExitCodeProcess(m_process, &code);
        return code;
    }

private:
    HANDLE m_process;
};

ExitCode request(RemoteOperation& operation, std::optional<unsigned> waitSeconds)
{
    if (!waitSeconds) {
        operation.open();
        return ExitCode::Done;
    }
    switch (operation.openAndWait(std::chrono::seconds(*waitSeconds))) {
    case RemoteOperation::Outcome::Acknowledged: return ExitCode::Done;
    case RemoteOperation::Outcome::TimedOut:
        throw CommandError(
            ExitCode::TimedOut, "no acknowledgement within " + std::to_string(*waitSeconds) + " seconds");
    case RemoteOperation::Outcome::Stopped: break;
    }
    throw CommandError(ExitCode::Failed, "stopped before the acknowledgement");
}

ExitCode call(const Context& context, const nlohmann::json& message)
{
    const auto reply = callHost(context.instance, message);
    context.printer.result(reply.value("text", "done"), reply);
    return ExitCode::Done;
}

} // namespace

ExitCode requestScan(const Context& context, std::optional<unsigned> waitSeconds)
{
    const auto& rows = keys::settings.remoteOperations.scanForUpdates;
    RemoteOperation operation(context, keyOf(rows.start), keyOf(rows.ack));
    const auto code = request(operation, waitSeconds);
    const auto enabled = store::Client(context.instance).get(keyOf(keys::status.enabled));
    if (enabled && *enabled == store::Value::fromBool(false))
        context.printer.event("warning", "the feature is off: requests are closed without a scan (see enable)",
            {{"warning", "feature off"}});
    return code;
}

ExitCode requestInstallation(const Context& context, const std::string& descriptor, std::optional<unsigned> waitSeconds)
{
    const auto& rows = keys::settings.remoteOperations.installUpdates;
    store::Client client(context.instance);
    client.set(keyOf(rows.updatesToInstall), store::Value::fromString(descriptor));
    RemoteOperation operation(context, keyOf(rows.start), keyOf(rows.ack));
    const auto code = request(operation, waitSeconds);
    const auto result = waitSeconds ? client.get(keyOf(rows.result)) : std::nullopt;
    if (result)
        context.printer.event("result", "result: " + result->text(), {{"result", result->text()}});
    return code;
}

ExitCode stopHost(const Context& context)
{
    const auto status = callHost(context.instance, {{"command", "status"}});
    // Opened before the request: afterwards the process may be gone already.
    WatchedProcess host(status.at("pid").get<DWORD>());
    callHost(context.instance, {{"command", "stop"}});
    const auto code = host.waitForEnd();
    context.printer.result("the host has ended with " + std::to_string(code), {{"exit_code", code}});
    return code == 0 ? ExitCode::Done : ExitCode::Failed;
}

ExitCode restartPlugin(const Context& context)
{
    return call(context, {{"command", "restart"}});
}

ExitCode reboot(const Context& context)
{
    return call(context, {{"command", "reboot"}});
}

ExitCode sendResume(const Context& context)
{
    return call(context, {{"command", "resume"}});
}

ExitCode sendSessionEvent(const Context& context, std::uint32_t type, std::uint32_t data)
{
    return call(context, {{"command", "session"}, {"type", type}, {"data", data}});
}

ExitCode forgetBootAtom(const Context& context)
{
    const bool found = forgetBoot();
    context.printer.result(found ? "the next start of the plug-in counts as the first since the boot"
                                 : "the plug-in has not run since the boot",
        {{"found", found}});
    return ExitCode::Done;
}

} // namespace devhost::host
