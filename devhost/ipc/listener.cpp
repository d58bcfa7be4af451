#include "ipc/listener.h"

#include "ipc/security.h"
#include "vxtl/guarded.h"
#include "vxtl/scopeexit.h"
#include "vxtl/win32exception.h"

#include <utility>

#include <windows.h>

namespace devhost::ipc {

namespace {

constexpr DWORD bufferBytes = 64 * 1024;
constexpr DWORD retryMs = 100;

} // namespace

Listener::Listener(std::wstring pipeName, Serve serve)
    : m_pipeName(std::move(pipeName)), m_serve(std::move(serve)), m_descriptor(ownDescriptor())
{
    m_thread = std::thread(&Listener::run, this, createPipe(Place::First));
}

Listener::~Listener()
{
    m_stop.set();
    m_thread.join();
    for (Served& served : m_served)
        served.thread.join();
}

std::unique_ptr<Pipe> Listener::createPipe(Place place) const
{
    SECURITY_ATTRIBUTES attributes{sizeof(attributes), m_descriptor.get(), FALSE};
    const DWORD first = place == Place::First ? FILE_FLAG_FIRST_PIPE_INSTANCE : 0;
    void* handle = CreateNamedPipeW(m_pipeName.c_str(), PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED | first,
        PIPE_TYPE_BYTE | PIPE_READMODE_BYTE | PIPE_WAIT | PIPE_REJECT_REMOTE_CLIENTS, PIPE_UNLIMITED_INSTANCES,
        bufferBytes, bufferBytes, 0, &attributes);
    if (handle == INVALID_HANDLE_VALUE)
        VX_THROW_WIN32(GetLastError());
    return std::make_unique<Pipe>(handle);
}

void Listener::run(std::unique_ptr<Pipe> pipe)
{
    while (pipe->accept(m_stop)) {
        joinFinished();
        // The next instance stands before this one is served, so that a client that comes in between
        // never finds the name gone.
        const bool served =
            vx::guarded("A client was turned away. ", [&] { serve(std::exchange(pipe, createPipe(Place::Further))); });
        if (!served) {
            pipe->disconnect();
            m_stop.wait(retryMs);
        }
    }
}

void Listener::serve(std::unique_ptr<Pipe> pipe)
{
    Served& served = m_served.emplace_back();
    vx::ScopeExit unserved([this] { m_served.pop_back(); });
    served.thread = std::thread([this, pipe = std::move(pipe), &served] {
        vx::guarded("A client's connection was dropped. ", [&] { m_serve(*pipe, m_stop); });
        served.done = true;
    });
    unserved.dismiss();
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

} // namespace devhost::ipc
