#pragma once

#include "agent/step.h"

namespace devhost::agent {

struct Member;

/// Throws ScriptError.
FlyerStep readFlyer(const Member& member);

} // namespace devhost::agent
