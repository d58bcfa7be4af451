#pragma once

#include "tarnctl/commandline.h"

namespace tarnctl {

/// "codes" and "keys": the product's own tables.
void addTablesCommands(CLI::App& app, const Choose& choose);

} // namespace tarnctl
