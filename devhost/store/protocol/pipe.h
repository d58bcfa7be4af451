#pragma once

#include "vxtl/handle.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace devhost::store {

/// The longest frame that either side accepts, in bytes.
inline constexpr std::size_t longestFrame = 64 * 1024 * 1024;

/// The full name of the pipe that the server of an instance listens on.
std::wstring pipeName(const std::wstring& instance);

/// One end of a connection that carries frames of text: four bytes of length, then the bytes. One thread
/// sends or receives at a time. Every wait ends when the stop event (borrowed, null for none) fires.
class Pipe {
public:
    /// Connects to the server of an instance; null at once when nobody listens.
    static std::unique_ptr<Pipe> connect(const std::wstring& instance, void* stopEvent);
    /// Takes over an open overlapped handle.
    Pipe(vx::SharedHandle handle, void* stopEvent);
    ~Pipe();
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    /// False when the other side is gone, takes no more, or the stop event fired; the connection is of
    /// no more use then.
    bool send(std::string_view frame);
    /// Blocks for a frame; none when send would give false, or for a frame that is too long.
    std::optional<std::string> receive();
    /// An event that fires when the other side goes away or says anything more. Borrowed. Nothing may
    /// be received from then on.
    void* watchForClose();

private:
    struct Transfer;

    bool transfer(bool writing, void* data, std::size_t size);

    vx::SharedHandle m_handle;
    void* m_stopEvent;
    std::unique_ptr<Transfer> m_transfer;
    std::unique_ptr<Transfer> m_watch;
};

} // namespace devhost::store
