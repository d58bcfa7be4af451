#pragma once

#include "ipc-api/ipccommunicationbase.h"
#include "ipc-api/ipclibrary.h"

#include <cstdint>
#include <nlohmann/json_fwd.hpp>

namespace vx::tarn::common {

/// Sends messages to whoever serves a channel. Any thread.
class IPCClient : public IPCCommunicationBase {
public:
    /// Connects to nobody. `owner` goes to the library as it is, with each message. The library is borrowed.
    IPCClient(const std::string& channelName, std::uint32_t owner, IpcLibrary& library = IpcLibrary::ofProcess());

    /// Blocks as long as the library does. The message's number is the application's. Gives 0, an error code of the
    /// library's, or noIpcLibrary. Throws the JSON library's type error for data whose texts are not UTF-8.
    virtual std::uint32_t send(std::uint32_t messageType, const nlohmann::json& body);

private:
    const std::uint32_t m_owner;
};

} // namespace vx::tarn::common
