#pragma once

#include "common/serviceproxy/iservice.h"

namespace vx::tarn::common {

/// A service of this computer. A wait polls the service's state.
class ServiceProxy : public IService {
public:
    /// `pollPause`: how long a wait leaves between two looks at the state.
    explicit ServiceProxy(
        const std::wstring& name, std::chrono::milliseconds pollPause = std::chrono::milliseconds(100));

    std::wstring getName() override;
    void changeStartType(ServiceStartType type) override;
    ServiceStartType getStartType() override;
    ServiceState getStartState() override;
    ServiceOperation beginStart(std::chrono::milliseconds timeout, ServiceWait wait) override;
    ServiceOperation beginStop(std::chrono::milliseconds timeout, ServiceWait wait) override;
    bool isStartPending() override;
    bool isRunning() override;
    bool isStopped() override;
    bool isStopPending() override;
    bool isPausing() override;
    ServiceState getState() override;

private:
    ServiceOperation waitFor(ServiceState state, std::chrono::milliseconds timeout, ServiceWait wait) const;

    Service m_service;
    std::chrono::milliseconds m_pollPause;
};

/// Looks until the state is there: true. False on the time-out or once `cancel`, which may be null, has
/// fired.
bool waitForState(const std::function<ServiceState()>& currentState, ServiceState state,
    std::chrono::milliseconds timeout, std::chrono::milliseconds pollPause, const IWaitable* cancel);

} // namespace vx::tarn::common
