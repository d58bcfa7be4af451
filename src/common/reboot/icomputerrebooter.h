#pragma once

namespace vx::tarn::common {

/// Reboots this computer.
class IComputerRebooter {
public:
    virtual ~IComputerRebooter() = default;
    /// Asks the system for a reboot, without a word to any user, and comes back at once: true when the system has
    /// accepted. A refusal is logged and false.
    virtual bool initiateReboot() = 0;
};

} // namespace vx::tarn::common
