#pragma once

#include "tarnctl/health/facts.h"

namespace tarnctl::health {

/// Reads everything that this user may read of this machine and its store, and changes nothing. What can't be read is
/// noted in its fact; throws only where COM can't be entered.
Facts gatherFacts();

} // namespace tarnctl::health
