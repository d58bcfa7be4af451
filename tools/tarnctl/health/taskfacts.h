#pragma once

#include "settings-api/settings.h"
#include "tarnctl/health/facts.h"

#include <memory>

namespace tarnctl::health {

/// The scheduled task beside what the store's settings ask for. Throws what store and Task Scheduler throw. The thread
/// has entered a COM apartment.
ScheduledTask readTask(const std::shared_ptr<vx::settings::Settings>& store);

} // namespace tarnctl::health
