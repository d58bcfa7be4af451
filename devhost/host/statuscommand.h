#pragma once

#include "host/context.h"
#include "host/exitcode.h"

namespace devhost::host {

/// An overview of the host, its plug-in, the store and the agent's runs. Shows what there is; NotRunning
/// when there is no host, also after waiting for one for the given time.
ExitCode showStatus(const Context& context, unsigned waitSeconds);

} // namespace devhost::host
