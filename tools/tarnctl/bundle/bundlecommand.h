#pragma once

#include "tarnctl/commandline.h"

namespace tarnctl::bundle {

/// "bundle": what somebody needs who looks at this machine from afar, in one file and without passwords.
void addBundleCommand(CLI::App& app, const Choose& choose);

} // namespace tarnctl::bundle
