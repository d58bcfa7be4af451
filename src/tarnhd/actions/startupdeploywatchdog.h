#pragma once

#include "tarnhd/actions/startupaction.h"
#include "vxtl/clock.h"

namespace vx::tarn {

/// Gives up the wait for a deployment that was to finish after the reboot: when the deployment that was in
/// progress at construction still is, the flags of the wait are cleared.
class StartupDeployWatchdog : public StartupAction {
public:
    StartupDeployWatchdog(common::CommonFactory* commonFactory, const TarnpatchSettings* settings);

    common::ExitStatus execute() override;
    /// The time that the deployment has; 0 when none was in progress at construction.
    std::chrono::milliseconds getDelay() override;

private:
    bool isDeployInProgress() const;
    Ticks deployTimestamp() const;

    std::int32_t m_timeoutMinutes = 0;
    Ticks m_waitTimestamp = 0;
};

} // namespace vx::tarn
