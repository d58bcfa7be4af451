#pragma once

#include "tarnctl/health/facts.h"

namespace tarnctl::health {

/// Which processes have the plug-in loaded, and which agents run. Only what this user may see is counted.
void gatherProcesses(Facts& facts);

} // namespace tarnctl::health
