// The functions of the library as its callers bind them: stdcall, decorated names. No exception leaves them: each
// becomes an error code, which are the system's.

#include "ipc/instance.h"
#include "libraries/QRLIPC/channelserver.h"
#include "libraries/QRLIPC/message.h"
#include "libraries/plannedcode.h"
#include "logging/nodestructor.h"
#include "vxtl/win32exception.h"

#include <map>
#include <memory>
#include <mutex>

#include <windows.h>

using namespace devhost::channel;
namespace ipc = devhost::ipc;

namespace {

// A handler may take its time; one that hangs must not take its sender with it.
constexpr unsigned long answerTimeoutMs = 60'000;

/// The servers that run in this process, by their handles, which are never used again.
struct Servers {
    std::mutex mutex;
    std::map<std::uint32_t, std::unique_ptr<ChannelServer>> running; ///< guarded by mutex, as is lastHandle
    std::uint32_t lastHandle = 0;

    /// Never destroyed: at the end of the process other threads may have died at any place.
    static Servers& instance()
    {
        static vx::NoDestructor<Servers> servers;
        return *servers;
    }
};

std::uint32_t lastError()
{
    const DWORD error = GetLastError();
    return error == 0 ? ERROR_GEN_FAILURE : error;
}

template <typename Body>
std::uint32_t codeOf(const char* call, Body body) noexcept
{
    if (const auto code = devhost::plannedCode(call))
        return static_cast<std::uint32_t>(*code);
    try {
        return body();
    } catch (const vx::Win32Exception& exception) {
        return exception.code();
    } catch (...) {
        return ERROR_GEN_FAILURE;
    }
}

std::uint32_t run(const char* channelName, Callback callback, void* context)
{
    auto server = std::make_unique<ChannelServer>(channelName, callback, context);
    auto& servers = Servers::instance();
    const std::lock_guard lock(servers.mutex);
    servers.running[++servers.lastHandle] = std::move(server);
    return servers.lastHandle;
}

std::uint32_t stop(std::uint32_t handle)
{
    auto& servers = Servers::instance();
    std::unique_ptr<ChannelServer> stopped;
    const std::lock_guard lock(servers.mutex);
    const auto found = servers.running.find(handle);
    if (found == servers.running.end())
        return ERROR_INVALID_HANDLE;
    // Its end would wait for the call that it comes from.
    if (found->second->isServingHere())
        return ERROR_POSSIBLE_DEADLOCK;
    stopped = std::move(found->second);
    servers.running.erase(found);
    return ERROR_SUCCESS;
}

std::uint32_t send(const char* channelName, const Message& message)
{
    const auto pipe = ipc::Pipe::connect(
        ipc::pipeName(ipc::instanceFromEnvironment(), channelPart(channelName).c_str()), {nullptr, answerTimeoutMs});
    if (!pipe || !pipe->send(toFrame(message)) || !pipe->receive())
        return lastError();
    return ERROR_SUCCESS;
}

} // namespace

extern "C" {

std::uint32_t WINAPI QRLIPCDelayLoadInitialize()
{
    return ERROR_SUCCESS;
}

/// Whoever is let in by the rules of the instance's other pipes; `access` has no say.
std::uint32_t WINAPI QRLIPCRunServer(std::uint32_t* serverHandle, const char* channelName, std::uint32_t,
    Callback callback, void* context, std::uint32_t)
{
    return codeOf("QRLIPC::RunServer", [&]() -> std::uint32_t {
        if (!serverHandle || !channelName || !callback)
            return ERROR_INVALID_PARAMETER;
        *serverHandle = run(channelName, callback, context);
        return ERROR_SUCCESS;
    });
}

/// Waits for messages under way.
std::uint32_t WINAPI QRLIPCStopServer(std::uint32_t serverHandle)
{
    return codeOf("QRLIPC::StopServer", [&] { return stop(serverHandle); });
}

/// Waits until the server's callback has returned, for a minute at most; its result stays with the server.
std::uint32_t WINAPI QRLIPCSend(const char* channelName, std::uint32_t owner, std::uint32_t messageType,
    const void* data, std::uint32_t dataSize, std::uint32_t, std::uint32_t)
{
    return codeOf("QRLIPC::Send", [&]() -> std::uint32_t {
        if (!channelName || (!data && dataSize != 0))
            return ERROR_INVALID_PARAMETER;
        return send(channelName, {messageType, owner, {static_cast<const char*>(data), dataSize}});
    });
}

} // extern "C"
