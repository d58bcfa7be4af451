#include "common/updaterlauncher/updaterlauncher.h"

#include "common/updaterlauncher/startage.h"
#include "vxtl/clock.h"
#include "vxtl/win32exception.h"

#include <windows.h>

#include <mutex>

namespace vx::tarn::common {

UpdaterLauncher::UpdaterLauncher(
    const UpdaterLauncherOptions& options, const std::shared_ptr<const IWaitable>& stopEvent)
    : m_mutex(options.mutexName, true, stopEvent), m_event(openStartEvent(options, stopEvent.get()))
{}

void UpdaterLauncher::startScan()
{
    VX_LOG_SCOPE();
    const std::lock_guard lock(m_mutex);
    startScanAt(systemTicks());
}

void UpdaterLauncher::startScanIfOlderThan(std::int64_t seconds)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(seconds);
    const std::lock_guard lock(m_mutex);
    const Ticks now = systemTicks();
    if (isStartOlderThan(m_lastStart, seconds, now))
        startScanAt(now);
}

void UpdaterLauncher::startScanAt(std::int64_t time)
{
    logging::LogStream(logging::Level::Info) << "Scan start time: " << time;
    if (!m_event->set())
        VX_THROW_WIN32_AS(L"vx::tarn::common::UpdaterLauncher::startScan", GetLastError(), L"SetEvent failed");
    m_lastStart = time;
}

std::shared_ptr<Event> UpdaterLauncher::openStartEvent(
    const UpdaterLauncherOptions& options, const IWaitable* stopEvent)
{
    // The event's maker may start later than this process, so its absence is waited out.
    const auto deadline = uptime() + options.openTimeout;
    for (;;) {
        if (void* handle = OpenEventW(SYNCHRONIZE | EVENT_MODIFY_STATE, FALSE, options.eventName.c_str()))
            return std::make_shared<Event>(std::make_shared<KernelHandle>(handle));
        const DWORD error = GetLastError();
        const auto pause = static_cast<DWORD>(options.openPause.count());
        if (!stopEvent)
            Sleep(pause);
        else if (sync::waitForSingleObject(*stopEvent, pause))
            throw sync::StoppedException("Stopped while waiting for the start event");
        if (uptime() >= deadline) {
            logging::LogStream(logging::Level::Error) << error;
            VX_THROW_WIN32(error, L"TarnpatchLauncherImpl::openStartEventImpl failed");
        }
    }
}

} // namespace vx::tarn::common
