#pragma once

#include "tarnhd/actions/startupaction.h"
#include "vxtl/clock.h"

#include <cstdint>

namespace vx::tarn {

/// Asks for the scan after a boot, unless a deployment is being waited for. Its delay is the setting's plus a
/// random part of up to the randomization interval.
class StartupAutoScan : public StartupAction {
public:
    StartupAutoScan(
        common::CommonFactory* commonFactory, const TarnpatchSettings* settings, WallClock now = systemTicks);

    common::ExitStatus execute() override;
    std::chrono::milliseconds getDelay() override;

private:
    std::uint32_t drawRandom() noexcept;

    const WallClock m_now;
    const Ticks m_creationTime;
    const std::shared_ptr<common::IUpdaterLauncher> m_scanLauncher; ///< the one that execute uses
    std::uint32_t m_random = 1;                                     ///< the state of the generator
};

} // namespace vx::tarn
