#include "logreading/directorywatch.h"

#include <windows.h>

namespace logreading {

DirectoryWatch::DirectoryWatch(std::filesystem::path folder) : m_folder(std::move(folder))
{
    open();
}

DirectoryWatch::~DirectoryWatch()
{
    close();
}

void DirectoryWatch::open()
{
    const auto handle = FindFirstChangeNotificationW(m_folder.c_str(), FALSE,
        FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_SIZE | FILE_NOTIFY_CHANGE_LAST_WRITE);
    m_notification = handle == INVALID_HANDLE_VALUE ? nullptr : handle;
}

void DirectoryWatch::close()
{
    if (m_notification)
        FindCloseChangeNotification(m_notification);
    m_notification = nullptr;
}

DirectoryWatch::Result DirectoryWatch::wait(void* stop, unsigned long timeoutMs)
{
    if (!m_notification)
        open();
    HANDLE handles[2];
    DWORD count = 0;
    for (const HANDLE handle : {stop, m_notification})
        if (handle)
            handles[count++] = handle;
    if (count == 0) {
        Sleep(timeoutMs);
        return Result::TimedOut;
    }
    const auto fired = WaitForMultipleObjects(count, handles, FALSE, timeoutMs);
    if (fired >= WAIT_OBJECT_0 + count)
        return Result::TimedOut;
    if (handles[fired - WAIT_OBJECT_0] == stop)
        return Result::Stopped;
    // A folder that was removed stays signalled for good: it is looked for anew.
    if (!FindNextChangeNotification(m_notification))
        close();
    return Result::Changed;
}

} // namespace logreading
