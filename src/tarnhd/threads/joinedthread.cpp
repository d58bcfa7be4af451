#include "tarnhd/threads/joinedthread.h"

#include "vxtl/guarded.h"
#include "vxtl/win32exception.h"

#include <windows.h>

namespace vx::tarn {

namespace {

DWORD WINAPI runBody(void* argument)
{
    guarded(*static_cast<const std::function<void()>*>(argument));
    return 0;
}

HANDLE startThread(const std::function<void()>& body)
{
    if (HANDLE thread = CreateThread(nullptr, 0, &runBody, const_cast<std::function<void()>*>(&body), 0, nullptr))
        return thread;
    VX_THROW_WIN32(GetLastError());
}

} // namespace

JoinedThread::JoinedThread(std::function<void()> body) : m_body(std::move(body)), m_handle(startThread(m_body)) {}

JoinedThread::~JoinedThread()
{
    WaitForSingleObject(m_handle.get(), INFINITE);
}

} // namespace vx::tarn
