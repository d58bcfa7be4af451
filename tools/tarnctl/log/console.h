#pragma once

#include "logreading/record.h"

namespace tarnctl::log {

/// The present moment by the clock that the log is written with.
logreading::Moment localNow();

/// Whether standard output is a terminal that understands escape sequences for colours; makes it so if it can.
bool isColourTerminal();

} // namespace tarnctl::log
