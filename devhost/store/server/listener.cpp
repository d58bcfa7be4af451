#include "store/server/listener.h"

#include "logging/logstream.h"
#include "store/protocol/pipe.h"
#include "store/server/servedconnection.h"
#include "store/server/systemfailure.h"

#include <utility>

#include <windows.h>

namespace devhost::store {

namespace {

constexpr DWORD bufferBytes = 64 * 1024;
constexpr DWORD retryMs = 100;

} // namespace

Listener::Listener(std::wstring pipeName, RequestHandler& handler)
    : m_pipeName(std::move(pipeName)), m_handler(handler), m_stopEvent(CreateEventW(nullptr, TRUE, FALSE, nullptr))
{
    m_thread = std::thread(&Listener::run, this, createPipe(true));
}

Listener::~Listener()
{
    SetEvent(m_stopEvent.get());
    m_thread.join();
    for (Served& served : m_served)
        served.thread.join();
}

vx::SharedHandle Listener::createPipe(bool first) const
{
    const DWORD firstOnly = first ? FILE_FLAG_FIRST_PIPE_INSTANCE : 0;
    auto pipe = std::make_shared<vx::KernelHandle>(
        CreateNamedPipeW(m_pipeName.c_str(), PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED | firstOnly,
            PIPE_TYPE_BYTE | PIPE_READMODE_BYTE | PIPE_WAIT | PIPE_REJECT_REMOTE_CLIENTS, PIPE_UNLIMITED_INSTANCES,
            bufferBytes, bufferBytes, 0, static_cast<SECURITY_ATTRIBUTES*>(m_security.attributes())));
    if (!pipe->isValid())
        throwSystemFailure(GetLastError(), m_pipeName);
    return pipe;
}

void Listener::run(vx::SharedHandle pipe)
{
    while (awaitClient(pipe->get())) {
        joinFinished();
        try {
            // The next instance stands before this one is served, so that a client that comes in between
            // never finds the name gone.
            const vx::SharedHandle next = createPipe(false);
            serve(std::exchange(pipe, next));
        } catch (const std::exception& exception) {
            vx::logging::LogStream(vx::logging::Level::Error) << "A client was turned away. " << exception.what();
            DisconnectNamedPipe(pipe->get());
            WaitForSingleObject(m_stopEvent.get(), retryMs);
        }
    }
}

bool Listener::awaitClient(void* pipe) const
{
    const vx::KernelHandle connected(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    OVERLAPPED overlapped{};
    overlapped.hEvent = connected.get();
    const DWORD error = ConnectNamedPipe(pipe, &overlapped) ? ERROR_IO_PENDING : GetLastError();
    if (error != ERROR_IO_PENDING) // a client that was faster is no failure; one that has left shows later
        return WaitForSingleObject(m_stopEvent.get(), 0) == WAIT_TIMEOUT;
    void* const events[] = {m_stopEvent.get(), connected.get()};
    const bool stopped = WaitForMultipleObjects(2, events, FALSE, INFINITE) == WAIT_OBJECT_0;
    if (stopped)
        CancelIoEx(pipe, &overlapped);
    DWORD bytes = 0;
    GetOverlappedResult(pipe, &overlapped, &bytes, TRUE);
    return !stopped;
}

void Listener::serve(vx::SharedHandle pipe)
{
    Served& served = m_served.emplace_back();
    try {
        served.thread = std::thread([this, pipe = std::move(pipe), &served]() mutable {
            ServedConnection(std::move(pipe), m_handler, m_stopEvent.get()).run();
            served.done = true;
        });
    } catch (...) {
        m_served.pop_back();
        throw;
    }
}

void Listener::joinFinished()
{
    for (auto served = m_served.begin(); served != m_served.end();) {
        if (!served->done) {
            ++served;
            continue;
        }
        served->thread.join();
        served = m_served.erase(served);
    }
}

} // namespace devhost::store
