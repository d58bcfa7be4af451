#include "ipc-api/ipcserver.h"

#include "handlerlist.h"
#include "messagebody.h"

#include "logging/logstream.h"
#include "vxtl/guarded.h"
#include "vxtl/modulelife.h"

#include <nlohmann/json.hpp>

namespace vx::tarn::common {

using logging::Level;
using logging::LogStream;

IPCServer::IPCServer(const std::string& channelName, std::uint32_t access, IpcLibrary& library)
    : IPCCommunicationBase(channelName, library), m_access(access)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(channelName, access);
}

IPCServer::~IPCServer()
{
    VX_LOG_SCOPE();
    IPCServer::stop();
    HandlerList::instance().remove(this);
}

std::uint32_t IPCServer::start(const Handler& handler)
{
    VX_LOG_SCOPE();
    const IpcFunctions* const functions = m_library.ensureIpcLoaded();
    if (!functions) {
        LogStream(Level::Error) << "Failed to load IPC library.";
        return noIpcLibrary;
    }
    LogStream(Level::Debug) << "Trying to start IPC server with channel name: " << m_channelName;
    if (m_serverHandle != 0)
        stop();
    const std::uint32_t result =
        functions->runServer(&m_serverHandle, m_channelName.c_str(), m_access, &IPCServer::OnIPCMessage, this, 0);
    if (result != 0)
        LogStream(Level::Error) << "Failed to start IPC server. Error code: " << result;
    HandlerList::instance().set(this, handler);
    return result;
}

std::uint32_t IPCServer::stop()
{
    LogStream(Level::Debug) << "Trying to stop IPC server with channel name: " << m_channelName;
    if (m_serverHandle == 0) {
        LogStream(Level::Debug) << "No need to stop IPC server, it isn't running";
        return 0;
    }
    const std::uint32_t result = m_library.ensureIpcLoaded()->stopServer(m_serverHandle);
    if (result != 0) {
        LogStream(Level::Error) << "Failed to stop IPC server. Error code: " << result;
        // The library may still call.
        modulelife::keep();
    }
    m_serverHandle = 0;
    return result;
}

std::int32_t VX_STDCALL IPCServer::OnIPCMessage(
    std::uint32_t messageType, const void* data, std::uint32_t dataSize, const void* message, void* context)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(messageType, data, dataSize, message, context);
    if (!context)
        return 0;
    std::int32_t result = 0;
    guarded([&] {
        const HandlerList::Call call(context);
        if (!call.handler()) {
            LogStream(Level::Error) << "There is no handler for IPC message.";
            return;
        }
        result = (*call.handler())(messageType, readMessageBody(data, dataSize));
    });
    return result;
}

} // namespace vx::tarn::common
