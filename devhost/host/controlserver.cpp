#include "host/controlserver.h"

#include "host/exitcode.h"
#include "host/systemtext.h"
#include "vxtl/parsejson.h"

#include <nlohmann/json.hpp>
#include <vector>
#include <windows.h>
// behind windows.h
#include <sddl.h>

namespace devhost::host {

namespace {

constexpr DWORD stepTimeoutMs = 5000;
constexpr DWORD bufferSize = 64 * 1024;

std::wstring ownSid()
{
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token))
        return {};
    std::vector<BYTE> buffer(512);
    DWORD size = 0;
    wchar_t* text = nullptr;
    std::wstring sid;
    if (GetTokenInformation(token, TokenUser, buffer.data(), static_cast<DWORD>(buffer.size()), &size) &&
        ConvertSidToStringSidW(reinterpret_cast<TOKEN_USER*>(buffer.data())->User.Sid, &text)) {
        sid = text;
        LocalFree(text);
    }
    CloseHandle(token);
    return sid;
}

/// Open to the system, administrators and the user of this process.
HANDLE createPipe(const std::wstring& instance)
{
    std::wstring sddl = L"D:P(A;;GA;;;SY)(A;;GA;;;BA)";
    if (const auto sid = ownSid(); !sid.empty())
        sddl += L"(A;;GA;;;" + sid + L")";
    SECURITY_ATTRIBUTES attributes{sizeof(attributes), nullptr, FALSE};
    if (!ConvertStringSecurityDescriptorToSecurityDescriptorW(
            sddl.c_str(), SDDL_REVISION_1, &attributes.lpSecurityDescriptor, nullptr))
        throw CommandError(ExitCode::Failed, "host control: " + systemText(GetLastError()));
    const auto pipe = CreateNamedPipeW(ControlPipe::nameOf(instance).c_str(),
        PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED | FILE_FLAG_FIRST_PIPE_INSTANCE,
        PIPE_TYPE_MESSAGE | PIPE_READMODE_MESSAGE | PIPE_REJECT_REMOTE_CLIENTS, 1, bufferSize, bufferSize, 0,
        &attributes);
    const auto code = GetLastError();
    LocalFree(attributes.lpSecurityDescriptor);
    if (pipe == INVALID_HANDLE_VALUE)
        throw CommandError(ExitCode::Failed, "host control: " + systemText(code));
    return pipe;
}

} // namespace

ControlServer::ControlServer(const std::wstring& instance, Handler handler)
    : m_handler(std::move(handler)), m_pipe(createPipe(instance)),
      m_stopEvent(CreateEventW(nullptr, TRUE, FALSE, nullptr)), m_thread([this] { serve(); })
{}

ControlServer::~ControlServer()
{
    SetEvent(m_stopEvent);
    m_thread.join();
    CloseHandle(m_stopEvent);
}

void ControlServer::serve()
{
    while (WaitForSingleObject(m_stopEvent, 0) != WAIT_OBJECT_0) {
        try {
            if (m_pipe.accept(m_stopEvent))
                answer();
        } catch (const std::exception&) {
            // A client that went away or stays silent is its own loss.
        }
        m_pipe.disconnect();
    }
}

void ControlServer::answer()
{
    nlohmann::json reply;
    const auto request = vx::parseJson(m_pipe.read(stepTimeoutMs));
    try {
        reply = m_handler(request);
    } catch (const CommandError& error) {
        reply = {{"error", error.what()}, {"code", static_cast<int>(error.code())}};
    } catch (const std::exception& exception) {
        reply = {{"error", exception.what()}};
    }
    m_pipe.write(reply.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace), stepTimeoutMs);
    // The client's end of connection tells that it has the answer; disconnecting earlier would drop it.
    m_pipe.read(stepTimeoutMs);
}

} // namespace devhost::host
