#include "host/directorywatch.h"

#include <windows.h>

namespace devhost::host {

DirectoryWatch::DirectoryWatch(std::filesystem::path folder) : m_folder(std::move(folder))
{
    open();
}

DirectoryWatch::~DirectoryWatch()
{
    if (m_notification)
        FindCloseChangeNotification(m_notification);
}

void DirectoryWatch::open()
{
    const auto handle = FindFirstChangeNotificationW(m_folder.c_str(), FALSE,
        FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_SIZE | FILE_NOTIFY_CHANGE_LAST_WRITE);
    m_notification = handle == INVALID_HANDLE_VALUE ? nullptr : handle;
}

DirectoryWatch::Result DirectoryWatch::wait(const ipc::Signal& stop, unsigned long timeoutMs)
{
    if (!m_notification)
        open();
    const HANDLE handles[] = {stop.handle(), m_notification};
    switch (WaitForMultipleObjects(m_notification ? 2 : 1, handles, FALSE, timeoutMs)) {
    case WAIT_OBJECT_0: return Result::Stopped;
    case WAIT_OBJECT_0 + 1: FindNextChangeNotification(m_notification); return Result::Changed;
    default: return Result::TimedOut;
    }
}

} // namespace devhost::host
