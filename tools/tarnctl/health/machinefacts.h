#pragma once

#include "settings-api/settings.h"
#include "tarnctl/health/facts.h"

#include <memory>

namespace tarnctl::health {

/// Reads registry, processes, services, Task Scheduler and log of this machine; changes nothing. The store, null when
/// it can't be reached, tells what the task and the reboot are to be like. The thread has entered a COM apartment.
void gatherFromMachine(const std::shared_ptr<vx::settings::Settings>& store, Facts& facts);

} // namespace tarnctl::health
