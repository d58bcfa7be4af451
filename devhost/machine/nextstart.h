#pragma once

#include "machine/boundary.h"

#include <nlohmann/json_fwd.hpp>

namespace devhost::machine {

/// When the triggers of a definition next start it, now included; nothing when none does any more, and for a task that
/// is not enabled. Triggers that are not valid are passed over.
std::optional<Moment> nextStart(const nlohmann::json& definition, Moment now);

} // namespace devhost::machine
