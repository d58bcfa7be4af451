#include "ipc-api/ipcclient.h"

#include "logging/logstream.h"

#include <nlohmann/json.hpp>

namespace vx::tarn::common {

using logging::Level;
using logging::LogStream;

IPCClient::IPCClient(const std::string& channelName, std::uint32_t owner, IpcLibrary& library)
    : IPCCommunicationBase(channelName, library), m_owner(owner)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(channelName, owner);
}

std::uint32_t IPCClient::send(std::uint32_t messageType, const nlohmann::json& body)
{
    VX_LOG_SCOPE();
    const std::string data = body.dump();
    VX_LOG_VALUES(messageType, data);
    const IpcFunctions* const functions = m_library.ensureIpcLoaded();
    if (!functions) {
        LogStream(Level::Error) << "Failed to load IPC library.";
        return noIpcLibrary;
    }
    const std::uint32_t result = functions->send(
        m_channelName.c_str(), m_owner, messageType, data.data(), static_cast<std::uint32_t>(data.size()), 0, 0);
    if (result != 0)
        LogStream(Level::Error) << "Failed to send data through IPC channel with name " << m_channelName;
    return result;
}

} // namespace vx::tarn::common
