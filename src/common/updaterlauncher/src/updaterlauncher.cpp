#include "common/updaterlauncher.h"

#include "common/startage.h"
#include "vxtl/win32exception.h"

#include <windows.h>

#include <mutex>
#include <ratio>

namespace vx::tarn::common {

namespace {

std::int64_t ticksNow()
{
    using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;
    return std::chrono::duration_cast<Ticks>(std::chrono::system_clock::now().time_since_epoch()).count();
}

} // namespace

UpdaterLauncher::UpdaterLauncher(const UpdaterLauncherOptions& options)
    : m_mutex(options.mutexName, true), m_event(openStartEvent(options))
{}

void UpdaterLauncher::startScan()
{
    VX_LOG_SCOPE();
    const std::lock_guard lock(m_mutex);
    startScanAt(ticksNow());
}

void UpdaterLauncher::startScanIfOlderThan(std::int64_t seconds)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(seconds);
    const std::lock_guard lock(m_mutex);
    const std::int64_t now = ticksNow();
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

std::shared_ptr<Event> UpdaterLauncher::openStartEvent(const UpdaterLauncherOptions& options)
{
    // The event's maker may start later than this process, so its absence is waited out.
    const auto deadline = std::chrono::steady_clock::now() + options.openTimeout;
    for (;;) {
        if (void* handle = OpenEventW(SYNCHRONIZE | EVENT_MODIFY_STATE, FALSE, options.eventName.c_str()))
            return std::make_shared<Event>(std::make_shared<KernelHandle>(handle));
        const DWORD error = GetLastError();
        Sleep(static_cast<DWORD>(options.openPause.count()));
        if (std::chrono::steady_clock::now() >= deadline) {
            logging::LogStream(logging::Level::Error) << error;
            VX_THROW_WIN32(error, L"TarnpatchLauncherImpl::openStartEventImpl failed");
        }
    }
}

} // namespace vx::tarn::common
