#pragma once

#include "tarnhd/actions/action.h"
#include "vxtl/clock.h"

namespace vx::tarn {

/// One-shot: asks for a scan, unless a deployment is being waited for or its time has not come.
class ScanOnce : public Action {
public:
    /// Executions before `startTime` do nothing.
    ScanOnce(common::CommonFactory* commonFactory, const TarnpatchSettings* settings, Ticks startTime,
        WallClock now = systemTicks);

    common::ExitStatus execute() override;

private:
    const Ticks m_startTime;
    const WallClock m_now;
};

} // namespace vx::tarn
