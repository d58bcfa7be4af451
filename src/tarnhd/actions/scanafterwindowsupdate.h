#pragma once

#include "tarnhd/actions/action.h"
#include "vxtl/clock.h"

namespace vx::tarn::common {
class IWindowsUpdates;
}

namespace vx::tarn {

/// Periodic: asks for a scan when Windows has installed updates since this action's last request. The first execution
/// asks whatever the date, unless there is none; so does each one before a date in the future.
class ScanAfterWindowsUpdate : public Action {
public:
    ScanAfterWindowsUpdate(
        common::CommonFactory* commonFactory, const TarnpatchSettings* settings, WallClock now = systemTicks);

    common::ExitStatus execute() override;

private:
    const std::shared_ptr<common::IWindowsUpdates> m_windowsUpdates;
    const WallClock m_now;
};

} // namespace vx::tarn
