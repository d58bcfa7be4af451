#pragma once

#include "machine/boundary.h"

namespace devhost::machine {

/// The time of day as the machine's user reads it.
Moment localNow();
/// The same in UTC.
Moment utcNow();

} // namespace devhost::machine
