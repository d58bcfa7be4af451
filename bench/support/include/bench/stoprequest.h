#pragma once

#include <memory>

namespace vx::registry {
class Registry;
}

namespace bench {

/// The trigger key, for as long as it lives: somebody wants the Windows Update service stopped, from now on. That is a
/// matter of the whole machine.
class StopRequest {
public:
    /// Throws Win32Exception.
    StopRequest();
    ~StopRequest();
    StopRequest(const StopRequest&) = delete;
    StopRequest& operator=(const StopRequest&) = delete;

private:
    const std::shared_ptr<vx::registry::Registry> m_registry;
};

} // namespace bench
