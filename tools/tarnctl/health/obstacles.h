#pragma once

#include "tarnctl/health/facts.h"

#include <string>
#include <vector>

namespace tarnctl::health {

/// What keeps the plug-in from starting the agent, whoever asks; one sentence each.
std::vector<std::string> obstacles(const Facts& facts);

} // namespace tarnctl::health
