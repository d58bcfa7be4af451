#include "host/controlclient.h"

#include "host/controlpipe.h"
#include "host/exitcode.h"
#include "host/systemtext.h"
#include "vxtl/parsejson.h"
#include "vxtl/str.h"

#include <nlohmann/json.hpp>
#include <windows.h>

namespace devhost::host {

namespace {

constexpr DWORD connectTimeoutMs = 30'000;
constexpr DWORD answerTimeoutMs = 120'000;

HANDLE connect(const std::wstring& instance)
{
    const auto name = ControlPipe::nameOf(instance);
    for (;;) {
        const auto pipe = CreateFileW(
            name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr);
        if (pipe != INVALID_HANDLE_VALUE) {
            DWORD mode = PIPE_READMODE_MESSAGE;
            SetNamedPipeHandleState(pipe, &mode, nullptr, nullptr);
            return pipe;
        }
        const auto code = GetLastError();
        if (code == ERROR_FILE_NOT_FOUND)
            throw CommandError(
                ExitCode::NotRunning, "no host of the instance \"" + vx::str::toUtf8(instance) + "\" is running");
        // Somebody else is being served.
        if (code != ERROR_PIPE_BUSY || !WaitNamedPipeW(name.c_str(), connectTimeoutMs))
            throw CommandError(ExitCode::Failed, "the host cannot be reached: " + systemText(code));
    }
}

} // namespace

nlohmann::json callHost(const std::wstring& instance, const nlohmann::json& request)
{
    ControlPipe pipe(connect(instance));
    pipe.write(request.dump(), answerTimeoutMs);
    const auto reply = vx::parseJson(pipe.read(answerTimeoutMs));
    if (reply.contains("error"))
        throw CommandError(static_cast<ExitCode>(reply.value("code", static_cast<int>(ExitCode::Failed))),
            reply["error"].get<std::string>());
    return reply;
}

} // namespace devhost::host
