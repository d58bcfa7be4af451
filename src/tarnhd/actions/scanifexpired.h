#pragma once

#include "tarnhd/actions/action.h"

namespace vx::tarn {

/// Periodic: asks for a scan when this action's last request is older than the maximum rescanning period. The
/// first execution always asks.
class ScanIfExpired : public Action {
public:
    using Action::Action;

    common::ExitStatus execute() override;
};

} // namespace vx::tarn
