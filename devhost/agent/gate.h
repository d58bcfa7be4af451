#pragma once

#include <string>

namespace devhost::agent {

/// Two named events by which somebody else holds a run. Empty names are no events.
struct Gate {
    std::string startedEvent; ///< set when the gate is reached
    std::string waitForEvent; ///< then waited for without a limit
};

/// Throws std::runtime_error when an event cannot be made.
void pass(const Gate& gate);

} // namespace devhost::agent
