#include "store/protocol/pipe.h"

#include <cstdint>
#include <cstring>

#include <windows.h>

namespace devhost::store {

namespace {

constexpr DWORD busyWaitMs = 2000;

} // namespace

/// An overlapped operation with its event; not to be destroyed while the system works on it.
struct Pipe::Transfer {
    Transfer() : event(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}

    void begin()
    {
        overlapped = {};
        overlapped.hEvent = event.get();
        ResetEvent(event.get());
    }

    vx::KernelHandle event;
    OVERLAPPED overlapped{};
    bool pending = false;
    char byte = 0;
};

std::wstring pipeName(const std::wstring& instance)
{
    return L"\\\\.\\pipe\\tarnhd." + instance + L".store";
}

std::unique_ptr<Pipe> Pipe::connect(const std::wstring& instance, void* stopEvent)
{
    const std::wstring name = pipeName(instance);
    // The server may look at who calls, and not act as the caller.
    constexpr DWORD flags = FILE_FLAG_OVERLAPPED | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION;
    for (;;) {
        void* handle =
            CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, flags, nullptr);
        if (handle != INVALID_HANDLE_VALUE)
            return std::make_unique<Pipe>(std::make_shared<vx::KernelHandle>(handle), stopEvent);
        // All instances are taken for the moment between two accepts.
        if (GetLastError() != ERROR_PIPE_BUSY || !WaitNamedPipeW(name.c_str(), busyWaitMs))
            return nullptr;
    }
}

Pipe::Pipe(vx::SharedHandle handle, void* stopEvent)
    : m_handle(std::move(handle)), m_stopEvent(stopEvent), m_transfer(std::make_unique<Transfer>())
{}

Pipe::~Pipe()
{
    if (!m_watch || !m_watch->pending)
        return;
    // The system writes into the operation until it is over.
    CancelIoEx(m_handle->get(), &m_watch->overlapped);
    DWORD bytes = 0;
    GetOverlappedResult(m_handle->get(), &m_watch->overlapped, &bytes, TRUE);
}

bool Pipe::transfer(bool writing, void* data, std::size_t size)
{
    auto* position = static_cast<char*>(data);
    while (size > 0) {
        m_transfer->begin();
        OVERLAPPED* overlapped = &m_transfer->overlapped;
        const auto length = static_cast<DWORD>(size);
        const BOOL done = writing ? WriteFile(m_handle->get(), position, length, nullptr, overlapped)
                                  : ReadFile(m_handle->get(), position, length, nullptr, overlapped);
        if (!done && GetLastError() != ERROR_IO_PENDING)
            return false;
        void* const events[] = {m_transfer->event.get(), m_stopEvent};
        const bool stopped = WaitForMultipleObjects(m_stopEvent ? 2 : 1, events, FALSE, INFINITE) != WAIT_OBJECT_0;
        if (stopped)
            CancelIoEx(m_handle->get(), overlapped);
        DWORD bytes = 0;
        if (!GetOverlappedResult(m_handle->get(), overlapped, &bytes, TRUE) || stopped || bytes == 0)
            return false;
        position += bytes;
        size -= bytes;
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
    m_watch = std::make_unique<Transfer>();
    m_watch->begin();
    const BOOL done = ReadFile(m_handle->get(), &m_watch->byte, 1, nullptr, &m_watch->overlapped);
    m_watch->pending = done || GetLastError() == ERROR_IO_PENDING;
    if (!m_watch->pending)
        SetEvent(m_watch->event.get());
    return m_watch->event.get();
}

} // namespace devhost::store
