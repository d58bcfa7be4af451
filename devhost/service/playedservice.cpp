#include "service/playedservice.h"

#include "service/stoptime.h"
#include "service/updateservice.h"
#include "vxtl/clock.h"
#include "vxtl/win32exception.h"

#include <windows.h>

namespace devhost::service {

using std::chrono::milliseconds;
using vx::tarn::common::Event;

PlayedService::PlayedService()
{
    m_status = RegisterServiceCtrlHandlerExW(serviceName, &onControl, this);
    if (!m_status)
        VX_THROW_WIN32(GetLastError(), L"no service that the system knows");
}

void PlayedService::run()
{
    // The key has to be there to be watched.
    readStopTime();
    m_notifier.initialize(HKEY_LOCAL_MACHINE, keptKeyPath, KEY_NOTIFY);
    awaitStop();
    awaitStopTime();
    report(SERVICE_STOPPED);
}

unsigned long PlayedService::onControl(unsigned long control, unsigned long, void*, void* service)
{
    if (control == SERVICE_CONTROL_STOP)
        static_cast<PlayedService*>(service)->beginStop();
    else if (control != SERVICE_CONTROL_INTERROGATE)
        return ERROR_CALL_NOT_IMPLEMENTED;
    return NO_ERROR;
}

void PlayedService::awaitStop()
{
    const Event* const awaited[] = {m_stop.get(), m_changed.get()};
    do {
        watch();
        reportRunning(readStopTime() ? Stops::Accepted : Stops::Refused);
    } while (*vx::sync::waitForMultipleObjects(awaited) != m_stop.get());
}

void PlayedService::awaitStopTime()
{
    const auto begin = vx::uptime();
    // A stop that was accepted is carried out, also when the next one is to be refused.
    const auto timeLeft = [&] { return readStopTime().value_or(std::chrono::seconds(0)) - (vx::uptime() - begin); };
    watch();
    for (auto left = timeLeft(); left > milliseconds(0); left = timeLeft())
        if (vx::sync::waitForSingleObject(*m_changed, static_cast<unsigned long>(left.count())))
            watch();
}

// Before each look, so that a change between look and wait is seen.
void PlayedService::watch()
{
    m_notifier.notifyChangeKeyValue(REG_NOTIFY_CHANGE_LAST_SET, *m_changed);
}

void PlayedService::beginStop()
{
    const std::lock_guard lock(m_mutex);
    m_stopping = true;
    report(SERVICE_STOP_PENDING);
    m_stop->set();
}

void PlayedService::reportRunning(Stops stops)
{
    const std::lock_guard lock(m_mutex);
    if (!m_stopping)
        report(SERVICE_RUNNING, stops == Stops::Accepted ? SERVICE_ACCEPT_STOP : 0);
}

void PlayedService::report(unsigned long state, unsigned long accepted) const
{
    SERVICE_STATUS status{};
    status.dwServiceType = SERVICE_WIN32_OWN_PROCESS;
    status.dwCurrentState = state;
    status.dwControlsAccepted = accepted;
    SetServiceStatus(static_cast<SERVICE_STATUS_HANDLE>(m_status), &status);
}

} // namespace devhost::service
