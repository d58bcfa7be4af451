#pragma once

#include "common/settings/tarnpatchsettings.h"
#include "vxtl/clock.h"

#include <chrono>
#include <memory>

namespace vx::registry {
class Registry;
}
namespace vx::tarn::common {
class IComputerRebooter;
}

namespace vx::tarn {

/// Reboots the computer when the time since the request for it is over and no user is to be asked. Everything is read
/// at each use. One thread.
class ForcedReboot {
public:
    ForcedReboot(const std::shared_ptr<settings::Settings>& settings, std::shared_ptr<registry::Registry> registry,
        std::shared_ptr<common::IComputerRebooter> rebooter, WallClock now);

    /// True when the reboot is on its way. False when it isn't due or the system refuses; ask again. Throws what the
    /// store throws.
    bool handleForcedReboot();

private:
    bool isNowTimeToReboot(std::chrono::seconds forceTime);
    Ticks getRebootIninitatedTime();
    bool performReboot();

    const TarnpatchSettings m_settings;
    const std::shared_ptr<registry::Registry> m_registry;
    const std::shared_ptr<common::IComputerRebooter> m_rebooter;
    const WallClock m_now;
};

} // namespace vx::tarn
