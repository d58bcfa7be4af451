#include "libraries/QRLIPC/channelserver.h"

#include "ipc/instance.h"
#include "libraries/QRLIPC/message.h"
#include "vxtl/win32exception.h"

#include <windows.h>

namespace devhost::channel {

namespace {

// A sender that was killed or stalls must not keep a stop waiting.
constexpr unsigned long stepTimeoutMs = 5000;

thread_local const ChannelServer* servedHere = nullptr;

vx::SharedHandle lockChannel(const std::wstring& part)
{
    auto lock = ipc::lockPart(ipc::instanceFromEnvironment(), part.c_str());
    if (!lock)
        VX_THROW_WIN32(ERROR_ALREADY_EXISTS);
    return lock;
}

} // namespace

ChannelServer::ChannelServer(const std::string& channelName, Callback callback, void* context)
    : m_callback(callback), m_context(context), m_lock(lockChannel(channelPart(channelName))),
      m_listener(ipc::pipeName(ipc::instanceFromEnvironment(), channelPart(channelName).c_str()),
          [this](ipc::Pipe& pipe, const ipc::Signal& stop) { serve(pipe, stop); })
{}

bool ChannelServer::isServingHere() const
{
    return servedHere == this;
}

void ChannelServer::serve(ipc::Pipe& pipe, const ipc::Signal& stop) const
{
    pipe.limit({&stop, stepTimeoutMs});
    const auto frame = pipe.receive();
    const auto message = frame ? fromFrame(*frame) : std::nullopt;
    if (!message)
        return;
    servedHere = this;
    m_callback(
        message->type, message->body.data(), static_cast<std::uint32_t>(message->body.size()), &*message, m_context);
    servedHere = nullptr;
    // Not by the stop: who sent what was taken is to hear it.
    pipe.limit({nullptr, stepTimeoutMs});
    pipe.send({});
}

} // namespace devhost::channel
