#pragma once

#include "ipc/listener.h"
#include "vxtl/handle.h"

#include <cstdint>
#include <string>

namespace devhost::channel {

/// A stdcall function of the caller's. The data are not terminated; they and `message` are lent for the call.
using Callback = std::int32_t(__attribute__((stdcall)) *)(
    std::uint32_t type, const void* data, std::uint32_t size, const void* message, void* context);

/// Serves a channel from construction to destruction, each message on a thread of its own.
class ChannelServer {
public:
    /// Throws Win32Exception: ERROR_ALREADY_EXISTS where the channel has a server.
    ChannelServer(const std::string& channelName, Callback callback, void* context);
    /// Waits for messages under way, so not to be called from inside the callback. Who sends one that was not begun
    /// with hears that nobody is there.
    ~ChannelServer() = default;
    ChannelServer(const ChannelServer&) = delete;
    ChannelServer& operator=(const ChannelServer&) = delete;

    /// Whether the calling thread is inside the callback.
    bool isServingHere() const;

private:
    void serve(ipc::Pipe& pipe, const ipc::Signal& stop) const;

    const Callback m_callback;
    void* const m_context;
    const vx::SharedHandle m_lock;
    ipc::Listener m_listener; ///< last: it serves from its construction on
};

} // namespace devhost::channel
