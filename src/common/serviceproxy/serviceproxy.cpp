#include "common/serviceproxy/serviceproxy.h"

#include "vxtl/clock.h"

#include <windows.h>

namespace vx::tarn::common {

namespace {

using std::chrono::milliseconds;

/// True once `cancel` has fired.
bool pause(const IWaitable* cancel, milliseconds length)
{
    if (cancel)
        return sync::waitForSingleObject(*cancel, static_cast<unsigned long>(length.count()));
    Sleep(static_cast<DWORD>(length.count()));
    return false;
}

} // namespace

ServiceProxy::ServiceProxy(const std::wstring& name, milliseconds pollPause) : m_service(name), m_pollPause(pollPause)
{}

std::wstring ServiceProxy::getName()
{
    return m_service.getName();
}

void ServiceProxy::changeStartType(ServiceStartType type)
{
    m_service.changeStartType(type);
}

ServiceStartType ServiceProxy::getStartType()
{
    return m_service.getStartType();
}

ServiceState ServiceProxy::getStartState()
{
    return m_service.getState();
}

ServiceOperation ServiceProxy::beginStart(milliseconds timeout, ServiceWait wait)
{
    m_service.beginStart();
    return waitFor(ServiceState::Running, timeout, wait);
}

ServiceOperation ServiceProxy::beginStop(milliseconds timeout, ServiceWait wait)
{
    m_service.beginStop();
    return waitFor(ServiceState::Stopped, timeout, wait);
}

ServiceOperation ServiceProxy::waitFor(ServiceState state, milliseconds timeout, ServiceWait wait) const
{
    if (wait == ServiceWait::No)
        return {};
    return ServiceOperation([service = m_service, pollPause = m_pollPause, state, timeout](const IWaitable* cancel) {
        return waitForState([&] { return service.getState(); }, state, timeout, pollPause, cancel);
    });
}

bool waitForState(const std::function<ServiceState()>& currentState, ServiceState state, milliseconds timeout,
    milliseconds pollPause, const IWaitable* cancel)
{
    const milliseconds begin = uptime();
    while (currentState() != state)
        if (uptime() - begin >= timeout || pause(cancel, pollPause))
            return false;
    return true;
}

bool ServiceProxy::isStartPending()
{
    return getState() == ServiceState::StartPending;
}

bool ServiceProxy::isRunning()
{
    return getState() == ServiceState::Running;
}

bool ServiceProxy::isStopped()
{
    return getState() == ServiceState::Stopped;
}

bool ServiceProxy::isStopPending()
{
    return getState() == ServiceState::StopPending;
}

bool ServiceProxy::isPausing()
{
    const ServiceState state = getState();
    return state == ServiceState::ContinuePending || state == ServiceState::PausePending ||
           state == ServiceState::Paused;
}

ServiceState ServiceProxy::getState()
{
    return m_service.getState();
}

} // namespace vx::tarn::common
