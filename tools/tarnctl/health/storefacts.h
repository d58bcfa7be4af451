#pragma once

#include "settings-api/settings.h"
#include "tarnctl/health/facts.h"

#include <memory>

namespace tarnctl::health {

/// Reads what the store tells. Reads only; a value that can't be read is trouble of its own fact.
void gatherFromStore(const std::shared_ptr<vx::settings::Settings>& store, Facts& facts);
/// Says of all of them that the store can't be reached, and keeps why.
void noteStoreTrouble(const std::string& reason, Facts& facts);

} // namespace tarnctl::health
