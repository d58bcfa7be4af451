#pragma once

#include "tarnctl/commandline.h"

namespace tarnctl::health {

/// "health": what is wrong with this machine's patch management, and what to do.
void addHealthCommand(CLI::App& app, const Choose& choose);

} // namespace tarnctl::health
