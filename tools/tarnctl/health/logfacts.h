#pragma once

#include "tarnctl/health/facts.h"

namespace tarnctl::health {

/// What the log tells; nothing when there is none. Throws Win32Exception where it can't be read.
LogFacts readLog();
/// Where it is written. Asks for the right to make a file there, and makes none.
LogPlace readLogPlace();

} // namespace tarnctl::health
