#pragma once

#include "common/exitstatus/exitstatus.h"

namespace vx::tarn {

/// A decision that the action scheduler runs. It must not block for long: periodic actions hold up the
/// scheduler's other callers while they run.
class ActionBase {
public:
    virtual ~ActionBase() = default;
    virtual common::ExitStatus execute() = 0;
};

} // namespace vx::tarn
