#pragma once

#include "agent/deployscript.h"

#include <optional>

namespace devhost::agent {

struct Member;

/// Reads true, false or an object. Throws ScriptError.
std::optional<DeployScript> readDeploy(const Member& member);

} // namespace devhost::agent
