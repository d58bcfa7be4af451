#include "host/controlpipe.h"

#include "host/exitcode.h"
#include "host/systemtext.h"

#include <windows.h>

namespace devhost::host {

namespace {

constexpr DWORD messageLimit = 64 * 1024;

[[noreturn]] void fail(DWORD code)
{
    throw CommandError(ExitCode::Failed, "the connection between the hosts failed: " + systemText(code));
}

} // namespace

std::wstring ControlPipe::nameOf(std::wstring_view instance)
{
    return L"\\\\.\\pipe\\tarnhd." + std::wstring(instance) + L".host";
}

ControlPipe::ControlPipe(void* handle) : m_handle(handle), m_event(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}

ControlPipe::~ControlPipe()
{
    CloseHandle(m_handle);
    CloseHandle(m_event);
}

bool ControlPipe::accept(void* stopEvent)
{
    OVERLAPPED overlapped{};
    overlapped.hEvent = m_event;
    if (!ConnectNamedPipe(m_handle, &overlapped)) {
        const auto code = GetLastError();
        if (code == ERROR_PIPE_CONNECTED)
            return true;
        if (code != ERROR_IO_PENDING)
            fail(code);
    }
    const HANDLE handles[] = {stopEvent, m_event};
    const bool stopped = WaitForMultipleObjects(2, handles, FALSE, INFINITE) == WAIT_OBJECT_0;
    if (stopped)
        CancelIo(m_handle);
    DWORD unused = 0;
    const bool connected = GetOverlappedResult(m_handle, &overlapped, &unused, TRUE);
    return connected && !stopped;
}

void ControlPipe::disconnect()
{
    DisconnectNamedPipe(m_handle);
}

void ControlPipe::write(std::string_view message, unsigned long timeoutMs)
{
    OVERLAPPED overlapped{};
    overlapped.hEvent = m_event;
    finish(WriteFile(m_handle, message.data(), static_cast<DWORD>(message.size()), nullptr, &overlapped), timeoutMs,
        &overlapped);
}

std::string ControlPipe::read(unsigned long timeoutMs)
{
    std::string message(messageLimit, '\0');
    OVERLAPPED overlapped{};
    overlapped.hEvent = m_event;
    message.resize(
        finish(ReadFile(m_handle, message.data(), messageLimit, nullptr, &overlapped), timeoutMs, &overlapped));
    return message;
}

unsigned long ControlPipe::finish(bool started, unsigned long timeoutMs, void* overlapped)
{
    if (!started && GetLastError() != ERROR_IO_PENDING)
        fail(GetLastError());
    const bool timedOut = WaitForSingleObject(m_event, timeoutMs) == WAIT_TIMEOUT;
    // The buffers belong to the system until the operation has ended, be it by cancelling.
    if (timedOut)
        CancelIo(m_handle);
    DWORD count = 0;
    if (!GetOverlappedResult(m_handle, static_cast<OVERLAPPED*>(overlapped), &count, TRUE))
        fail(timedOut ? WAIT_TIMEOUT : GetLastError());
    return count;
}

} // namespace devhost::host
