#include "host/control.h"

#include "host/exitcode.h"
#include "host/systemtext.h"
#include "ipc/instance.h"
#include "ipc/listener.h"
#include "vxtl/lock.h"
#include "vxtl/parsejson.h"
#include "vxtl/str.h"
#include "vxtl/win32exception.h"

#include <nlohmann/json.hpp>
#include <windows.h>

namespace devhost::host {

namespace {

using nlohmann::json;

constexpr auto part = L"host";
constexpr DWORD stepTimeoutMs = 5000;
constexpr DWORD answerTimeoutMs = 120'000;

std::string answer(const ControlHandler& handler, const json& request)
{
    json reply;
    try {
        reply = handler(request);
    } catch (const CommandError& error) {
        reply = {{"error", error.what()}, {"code", static_cast<int>(error.code())}};
    } catch (const std::exception& exception) {
        reply = {{"error", exception.what()}};
    }
    return reply.dump(-1, ' ', false, json::error_handler_t::replace);
}

} // namespace

std::unique_ptr<ipc::Listener> serveControl(const std::wstring& instance, ControlHandler handler)
{
    const auto turn = std::make_shared<vx::sync::Mutex>();
    try {
        return std::make_unique<ipc::Listener>(ipc::pipeName(instance, part),
            [turn, handler = std::move(handler)](ipc::Pipe& pipe, const ipc::Signal& stop) {
                // Not the listener's end: whoever asks for it is still to have the answer.
                pipe.limit({nullptr, stepTimeoutMs});
                while (const auto request = pipe.receive()) {
                    const std::lock_guard lock(*turn);
                    if (stop.isSet())
                        return;
                    pipe.send(answer(handler, vx::parseJson(*request)));
                }
            });
    } catch (const vx::Win32Exception& exception) {
        throw CommandError(ExitCode::Failed, "host control: " + systemText(exception.code()));
    }
}

json callHost(const std::wstring& instance, const json& request)
{
    const auto pipe = ipc::Pipe::connect(ipc::pipeName(instance, part), {nullptr, answerTimeoutMs});
    if (!pipe && GetLastError() == ERROR_FILE_NOT_FOUND)
        throw CommandError(
            ExitCode::NotRunning, "no host of the instance \"" + vx::str::toUtf8(instance) + "\" is running");
    if (!pipe)
        throw CommandError(ExitCode::Failed, "the host cannot be reached: " + systemText(GetLastError()));
    const auto text = pipe->send(request.dump()) ? pipe->receive() : std::nullopt;
    if (!text)
        throw CommandError(ExitCode::Failed, "the connection between the hosts failed: " + systemText(GetLastError()));
    const auto reply = vx::parseJson(*text);
    if (reply.contains("error"))
        throw CommandError(static_cast<ExitCode>(reply.value("code", static_cast<int>(ExitCode::Failed))),
            reply["error"].get<std::string>());
    return reply;
}

} // namespace devhost::host
