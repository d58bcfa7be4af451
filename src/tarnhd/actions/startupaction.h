#pragma once

#include "tarnhd/actions/action.h"

#include <chrono>

namespace vx::tarn {

/// A one-shot action for the first start after a boot; it knows how long it is to be put off.
class StartupAction : public Action {
public:
    using Action::Action;

    virtual std::chrono::milliseconds getDelay() = 0;
};

} // namespace vx::tarn
