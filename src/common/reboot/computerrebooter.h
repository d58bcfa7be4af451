#pragma once

#include "common/reboot/icomputerrebooter.h"
#include "common/reboot/rebootdriver.h"

#include <memory>

namespace vx::tarn::common {

/// Reboots through the driver, after enabling the privilege that this takes. Any thread.
class ComputerRebooter : public IComputerRebooter {
public:
    explicit ComputerRebooter(std::unique_ptr<IRebootDriver> driver);

    bool initiateReboot() override;

private:
    bool acquireShutdownPrivileges();

    const std::unique_ptr<IRebootDriver> m_driver;
};

} // namespace vx::tarn::common
