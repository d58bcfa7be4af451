#pragma once

#include "tarnctl/commandline.h"

namespace tarnctl {

/// All commands, in the order of --help.
const std::vector<AddCommand>& allCommands();

} // namespace tarnctl
