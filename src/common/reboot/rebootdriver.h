#pragma once

#include <optional>

namespace vx::tarn::common {

/// Where enabling the privilege got stuck, and the system's error.
struct PrivilegeFailure {
    enum class Step { OpenToken, AdjustToken };
    Step step;
    unsigned long error;
};

/// The system's reboot. Any thread.
class IRebootDriver {
public:
    virtual ~IRebootDriver() = default;
    /// Lets this process ask for a reboot from here on. Nothing on success, which does not say that the process had
    /// the privilege to be enabled: the reboot is refused then.
    virtual std::optional<PrivilegeFailure> enableShutdownPrivilege() = 0;
    /// Nothing when the system has begun, otherwise its error.
    virtual std::optional<unsigned long> reboot() = 0;
};

/// The real one. Throws Win32Exception when the system's library is missing.
class RebootDriver : public IRebootDriver {
public:
    std::optional<PrivilegeFailure> enableShutdownPrivilege() override;
    std::optional<unsigned long> reboot() override;
};

} // namespace vx::tarn::common
