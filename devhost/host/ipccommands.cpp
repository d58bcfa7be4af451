#include "common/factory/commonfactory.h"
#include "host/commands.h"
#include "host/printer.h"
#include "host/stopsignal.h"
#include "host/systemtext.h"
#include "ipc-api/ipcclient.h"
#include "ipc-api/ipcserver.h"
#include "ipc/instance.h"
#include "vxtl/parsejson.h"

#include <atomic>
#include <nlohmann/json.hpp>

namespace devhost::host {

namespace {

using vx::tarn::common::CommonFactory;
using vx::tarn::common::IPCServer;

struct IpcOptions {
    std::string action, channel, body;
    std::optional<std::uint32_t> type;
    std::uint32_t owner = 0, access = 0;
    std::int32_t result = 0;
    unsigned count = 0, holdSeconds = 0;
};

void require(std::uint32_t result, const std::string& what)
{
    if (result == vx::tarn::common::noIpcLibrary)
        throw CommandError(ExitCode::Failed, what + ": QRLIPC.dll cannot be loaded");
    if (result != 0)
        throw CommandError(ExitCode::Failed, what + ": " + systemText(result));
}

nlohmann::json parseBody(const std::string& text)
{
    try {
        return text.empty() ? nlohmann::json() : vx::parseJson(text);
    } catch (const nlohmann::json::exception&) {
        throw CommandError(ExitCode::BadUsage, "ipc send: the BODY is no JSON: " + text);
    }
}

ExitCode sendMessage(const IpcOptions& options)
{
    if (!options.type)
        throw CommandError(ExitCode::BadUsage, "ipc send: give the TYPE of the message, a number");
    const auto client = CommonFactory().createIpcClient(options.channel, options.owner);
    require(client->send(*options.type, parseBody(options.body)), "the message was not taken");
    return ExitCode::Done;
}

/// Shows messages, and holds each for the time that the options say.
IPCServer::Handler showingHandler(const Context& context, const IpcOptions& options)
{
    return [&, told = std::make_shared<std::atomic<unsigned>>(0)](std::uint32_t type, const nlohmann::json& data) {
        const auto text = data.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
        context.printer.event(
            "message", "message " + std::to_string(type) + " " + text, {{"type", type}, {"data", data}});
        if (options.holdSeconds != 0)
            context.stop.wait(options.holdSeconds * 1000);
        if (++*told == options.count)
            context.stop.set();
        return options.result;
    };
}

ExitCode serveMessages(const Context& context, const IpcOptions& options)
{
    const auto server = CommonFactory().createIpcServer(options.channel, options.access);
    require(server->start(showingHandler(context, options)), "the channel cannot be served");
    context.printer.event("serving", "serving the channel " + options.channel, {{"channel", options.channel}});
    context.stop.wait(ipc::forever);
    require(server->stop(), "the server cannot be stopped");
    return ExitCode::Done;
}

ExitCode work(const Context& context, const IpcOptions& options)
{
    ipc::exportInstance(context.instance);
    return options.action == "send" ? sendMessage(options) : serveMessages(context, options);
}

} // namespace

void ipcCommands(Commands& commands)
{
    const auto [ipc, options] = commands.add(
        "ipc", "send a message over a channel of the IPC library's stand-in, or show those that come", work);
    ipc->add_option("ACTION", options.action, "send, or serve until Ctrl-C")
        ->required()
        ->check(CLI::IsMember({"send", "serve"}));
    ipc->add_option("CHANNEL", options.channel)->required();
    ipc->add_option("TYPE", options.type, "send: the message's number");
    ipc->add_option("BODY", options.body, "send: JSON; null without it");
    ipc->add_option("--owner", options.owner, "send: what the library is told of the sender")->capture_default_str();
    ipc->add_option("--access", options.access, "serve: what the library is told of the channel")
        ->capture_default_str();
    ipc->add_option("--result", options.result, "serve: what each message gives the library")->capture_default_str();
    ipc->add_option("--count", options.count, "serve: end after that many messages")->check(CLI::PositiveNumber);
    ipc->add_option("--hold", options.holdSeconds, "serve: how many seconds each message takes")
        ->check(waitableSeconds);
}

} // namespace devhost::host
