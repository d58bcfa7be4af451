#pragma once

#include <cstdint>
#include <string>

namespace tarnctl {

/// What an exit code of the agent means; a text that says so for one that has no meaning.
std::string meaningOf(std::int64_t code);

} // namespace tarnctl
