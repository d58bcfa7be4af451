#pragma once

#include "tarnctl/commandline.h"

namespace tarnctl::why {

/// "why": who asked for scans, installations and reboots, and what came of it.
void addWhyCommand(CLI::App& app, const Choose& choose);

} // namespace tarnctl::why
