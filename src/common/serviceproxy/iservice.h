#pragma once

#include "common/serviceproxy/serviceoperation.h"
#include "vxtl/service.h"

#include <chrono>
#include <string>

namespace vx::tarn::common {

/// Whether a begun start or stop gives something to wait on.
enum class ServiceWait { No, Yes };

/// A Windows service. Any thread. Operations throw Win32Exception.
class IService {
public:
    virtual ~IService() = default;
    virtual std::wstring getName() = 0;
    virtual void changeStartType(ServiceStartType type) = 0;
    virtual ServiceStartType getStartType() = 0;
    virtual ServiceState getStartState() = 0;
    /// Asks for the start and comes back at once. With ServiceWait::Yes the result waits until the service
    /// runs, at most for `timeout`; with ServiceWait::No it is empty.
    virtual ServiceOperation beginStart(std::chrono::milliseconds timeout, ServiceWait wait) = 0;
    /// Likewise for the stop.
    virtual ServiceOperation beginStop(std::chrono::milliseconds timeout, ServiceWait wait) = 0;
    virtual bool isStartPending() = 0;
    virtual bool isRunning() = 0;
    virtual bool isStopped() = 0;
    virtual bool isStopPending() = 0;
    /// Pausing, paused or on the way back from it.
    virtual bool isPausing() = 0;
    virtual ServiceState getState() = 0;
};

} // namespace vx::tarn::common
