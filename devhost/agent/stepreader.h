#pragma once

#include "agent/step.h"

namespace devhost::agent {

struct Member;

/// Reads a word, or an object whose one member is named after the step and holds its arguments. Throws ScriptError.
Step readStep(const Member& member);

} // namespace devhost::agent
