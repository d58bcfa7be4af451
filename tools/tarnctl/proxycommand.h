#pragma once

#include "tarnctl/commandline.h"

namespace tarnctl {

/// "proxy": which way a download would go.
void addProxyCommand(CLI::App& app, const Choose& choose);

} // namespace tarnctl
