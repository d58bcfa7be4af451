#pragma once

#include "ipc-api/ipccommunicationbase.h"
#include "ipc-api/ipclibrary.h"

#include <cstdint>
#include <functional>
#include <nlohmann/json_fwd.hpp>

namespace vx::tarn::common {

/// Serves a named channel. One thread starts, stops and destroys it, and none of that from inside a handler: the
/// library may wait for a message under way. Results are 0, an error code of the library's, or noIpcLibrary; nothing
/// is thrown for the library's failures.
class IPCServer : public IPCCommunicationBase {
public:
    /// Takes a message and gives the result that goes back to the library. Called on threads of the library's, for
    /// several messages at once if it has several. The message's number is the application's. A message without a body
    /// comes as null and one that is no JSON, or nests deeper than JSON of others may, as a text. What it throws is
    /// logged and counts as 0.
    using Handler = std::function<std::int32_t(std::uint32_t messageType, const nlohmann::json& data)>;

    /// Serves nothing yet. `access` goes to the library as it is. The library is borrowed.
    IPCServer(const std::string& channelName, std::uint32_t access, IpcLibrary& library = IpcLibrary::ofProcess());
    /// Stops. Whatever the library does, no message reaches the handler from then on, and none is inside: it waits for
    /// those on other threads.
    ~IPCServer() override;

    /// Serves from now on, anew if it did before. The handler is set once the server runs: messages before that find
    /// the earlier one or none. It is set when the library refuses, too.
    virtual std::uint32_t start(const Handler& handler);
    /// The handler stays for a later start; a server that isn't running gives 0.
    virtual std::uint32_t stop();

private:
    static std::int32_t VX_STDCALL OnIPCMessage(
        std::uint32_t messageType, const void* data, std::uint32_t dataSize, const void* message, void* context);

    const std::uint32_t m_access;
    std::uint32_t m_serverHandle = 0; ///< 0 while stopped
};

} // namespace vx::tarn::common
