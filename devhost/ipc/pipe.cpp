#include "ipc/pipe.h"

#include <cstdint>
#include <cstring>

#include <windows.h>

namespace devhost::ipc {

namespace {

constexpr DWORD busyWaitMs = 2000;

} // namespace

/// An overlapped operation with its event; not to be destroyed while the system works on it.
struct Pipe::Operation {
    OVERLAPPED* begin()
    {
        native = {};
        native.hEvent = done.handle();
        done.reset();
        return &native;
    }

    Signal done;
    OVERLAPPED native{};
    bool pending = false;
    char byte = 0;
};

std::unique_ptr<Pipe> Pipe::connect(const std::wstring& name, Limits limits)
{
    // The server may look at who calls, and not act as the caller.
    constexpr DWORD flags = FILE_FLAG_OVERLAPPED | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION;
    for (;;) {
        void* handle =
            CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, flags, nullptr);
        if (handle != INVALID_HANDLE_VALUE)
            return std::make_unique<Pipe>(handle, limits);
        // All instances are taken for the moment between two accepts.
        if (GetLastError() != ERROR_PIPE_BUSY || !WaitNamedPipeW(name.c_str(), busyWaitMs))
            return nullptr;
    }
}

Pipe::Pipe(void* handle, Limits limits) : m_handle(handle), m_limits(limits), m_operation(std::make_unique<Operation>())
{}

Pipe::~Pipe()
{
    if (!m_watch || !m_watch->pending)
        return;
    // The system writes into the operation until it is over.
    CancelIoEx(m_handle.get(), &m_watch->native);
    DWORD bytes = 0;
    GetOverlappedResult(m_handle.get(), &m_watch->native, &bytes, TRUE);
}

bool Pipe::accept(const Signal& stop)
{
    // A client that was faster is no failure; one that has left shows when it is served.
    const bool started = ConnectNamedPipe(m_handle.get(), m_operation->begin());
    finish(started, {&stop});
    return !stop.isSet();
}

void Pipe::disconnect()
{
    DisconnectNamedPipe(m_handle.get());
}

/// The bytes that the operation has moved; nothing when it failed or a limit cut it short.
std::optional<unsigned long> Pipe::finish(bool started, const Limits& limits)
{
    if (!started && GetLastError() != ERROR_IO_PENDING)
        return std::nullopt;
    void* const events[] = {m_operation->done.handle(), limits.stop ? limits.stop->handle() : nullptr};
    const DWORD fired = WaitForMultipleObjects(limits.stop ? 2 : 1, events, FALSE, limits.timeoutMs);
    if (fired != WAIT_OBJECT_0)
        CancelIoEx(m_handle.get(), &m_operation->native);
    DWORD bytes = 0;
    // The buffers belong to the system until the operation has ended, be it by the cancelling.
    const bool done = GetOverlappedResult(m_handle.get(), &m_operation->native, &bytes, TRUE);
    if (fired == WAIT_TIMEOUT)
        SetLastError(WAIT_TIMEOUT);
    return done && fired == WAIT_OBJECT_0 ? std::optional(bytes) : std::nullopt;
}

bool Pipe::transfer(bool writing, void* data, std::size_t size)
{
    auto* position = static_cast<char*>(data);
    while (size > 0) {
        OVERLAPPED* operation = m_operation->begin();
        const auto length = static_cast<DWORD>(size);
        const auto bytes = finish(writing ? WriteFile(m_handle.get(), position, length, nullptr, operation)
                                          : ReadFile(m_handle.get(), position, length, nullptr, operation),
            m_limits);
        if (bytes.value_or(0) == 0)
            return false;
        position += *bytes;
        size -= *bytes;
    }
    return true;
}

bool Pipe::send(std::string_view frame)
{
    if (frame.size() > longestFrame)
        return false;
    const auto length = static_cast<std::uint32_t>(frame.size());
    std::string buffer(sizeof length + frame.size(), '\0');
    std::memcpy(buffer.data(), &length, sizeof length);
    std::memcpy(buffer.data() + sizeof length, frame.data(), frame.size());
    return transfer(true, buffer.data(), buffer.size());
}

std::optional<std::string> Pipe::receive()
{
    std::uint32_t length = 0;
    if (!transfer(false, &length, sizeof length) || length > longestFrame)
        return std::nullopt;
    std::string frame(length, '\0');
    if (!transfer(false, frame.data(), frame.size()))
        return std::nullopt;
    return frame;
}

void* Pipe::watchForClose()
{
    m_watch = std::make_unique<Operation>();
    const BOOL done = ReadFile(m_handle.get(), &m_watch->byte, 1, nullptr, m_watch->begin());
    m_watch->pending = done || GetLastError() == ERROR_IO_PENDING;
    if (!m_watch->pending)
        m_watch->done.set();
    return m_watch->done.handle();
}

} // namespace devhost::ipc
