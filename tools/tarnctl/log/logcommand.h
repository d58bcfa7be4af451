#pragma once

#include "tarnctl/commandline.h"

namespace tarnctl::log {

/// "log": the plug-in's log as text, JSON, page or trace.
void addLogCommand(CLI::App& app, const Choose& choose);

} // namespace tarnctl::log
