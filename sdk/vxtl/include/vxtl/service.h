#pragma once

#include <string>

namespace vx {

/// The system's numbers.
enum class ServiceState : unsigned long {
    Stopped = 1,
    StartPending = 2,
    StopPending = 3,
    Running = 4,
    ContinuePending = 5,
    PausePending = 6,
    Paused = 7,
};

/// The system's numbers.
enum class ServiceStartType : unsigned long { Boot = 0, System = 1, Automatic = 2, Demand = 3, Disabled = 4 };

/// A Windows service, looked up by name anew for each call, so that no handle keeps a deleted service
/// alive. Any thread. Every operation throws Win32Exception; none waits for the service to follow.
class Service {
public:
    explicit Service(std::wstring name);

    const std::wstring& getName() const noexcept { return m_name; }
    /// Leaves all other settings as they are.
    void changeStartType(ServiceStartType type);
    ServiceStartType getStartType() const;
    ServiceState getState() const;
    /// Starts the service without arguments.
    void beginStart();
    void beginStop();

private:
    std::wstring m_name;
};

} // namespace vx
