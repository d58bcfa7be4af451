#include "libraries/QRLIPC/message.h"

#include "vxtl/str.h"

#include <cstring>

namespace devhost::channel {

namespace {

constexpr std::size_t headBytes = 2 * sizeof(std::uint32_t);

} // namespace

std::string toFrame(const Message& message)
{
    const std::uint32_t head[] = {message.type, message.owner};
    std::string frame(reinterpret_cast<const char*>(head), headBytes);
    return frame.append(message.body);
}

std::optional<Message> fromFrame(std::string_view frame)
{
    if (frame.size() < headBytes)
        return std::nullopt;
    std::uint32_t head[2];
    std::memcpy(head, frame.data(), headBytes);
    return Message{head[0], head[1], frame.substr(headBytes)};
}

std::wstring channelPart(const std::string& channelName)
{
    return L"ipc." + vx::str::toUnicode(channelName);
}

} // namespace devhost::channel
