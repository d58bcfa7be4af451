#pragma once

#include "agent/gate.h"
#include "common/settings/settingsenumerations.h"

#include <chrono>
#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace devhost::agent {

/// Holds a deployment once the patches are in a state.
struct Pause {
    vx::tarn::ValueItem at{};
    Gate gate;
};

/// What a run does with the deployment queue.
struct DeployScript {
    std::size_t items = std::numeric_limits<std::size_t>::max(); ///< how many of the queue's at most
    /// Each patch goes through them in order; none is the way to an installed patch, or to a waiting one.
    std::vector<vx::tarn::ValueItem> states;
    /// That the last state's log entries carry; empty: what the state suggests.
    std::optional<vx::tarn::InstallationResultItem> result;
    std::string code;                    ///< that all states carry
    std::chrono::milliseconds step{100}; ///< length of each state
    std::vector<Pause> pauses;
    bool reboot = false; ///< the patches' last state waits for a reboot, and so does the plug-in
};

} // namespace devhost::agent
