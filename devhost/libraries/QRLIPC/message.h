#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace devhost::channel {

/// What goes through a channel in one frame; an empty frame says that it was taken.
struct Message {
    std::uint32_t type = 0;
    std::uint32_t owner = 0;
    std::string_view body; ///< borrowed
};

std::string toFrame(const Message& message);
/// Borrows the frame; nothing for one that is none of toFrame's.
std::optional<Message> fromFrame(std::string_view frame);

/// The named pipe of a channel, and the name by which one server at a time has it.
std::wstring channelPart(const std::string& channelName);

} // namespace devhost::channel
