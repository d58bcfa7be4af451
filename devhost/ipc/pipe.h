#pragma once

#include "ipc/signal.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace devhost::ipc {

/// The longest frame that either side accepts, in bytes.
inline constexpr std::size_t longestFrame = 64 * 1024 * 1024;

/// What ends a wait on a pipe before its time.
struct Limits {
    const Signal* stop = nullptr;      ///< borrowed
    unsigned long timeoutMs = forever; ///< of each step towards a frame
};

/// One end of a named pipe that carries frames of text: four bytes of length, then the bytes. One thread
/// sends or receives at a time. Where an operation fails GetLastError tells why.
class Pipe {
public:
    /// Connects to the server of that name; null at once when nobody listens.
    static std::unique_ptr<Pipe> connect(const std::wstring& name, Limits limits);
    /// Takes over an open overlapped handle.
    explicit Pipe(void* handle, Limits limits = {});
    ~Pipe();
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    /// For what is sent and received from now on.
    void limit(Limits limits) { m_limits = limits; }

    /// Serving end: blocks for a client, or one that has come and gone; false when the signal came first.
    bool accept(const Signal& stop);
    /// Serving end: turns the client away.
    void disconnect();

    /// False when the other side is gone, takes no more, or a limit was reached; the connection is of no
    /// more use then.
    bool send(std::string_view frame);
    /// Blocks for a frame; none when send would give false, or for a frame that is too long.
    std::optional<std::string> receive();
    /// An event that fires when the other side goes away or says anything more. Borrowed. Nothing may
    /// be received from then on.
    void* watchForClose();

private:
    struct Operation;

    std::optional<unsigned long> finish(bool started, const Limits& limits);
    bool transfer(bool writing, void* data, std::size_t size);

    vx::KernelHandle m_handle;
    Limits m_limits;
    std::unique_ptr<Operation> m_operation;
    std::unique_ptr<Operation> m_watch; ///< from watchForClose on
};

} // namespace devhost::ipc
