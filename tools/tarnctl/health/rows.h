#pragma once

#include "tarnctl/health/said.h"

namespace tarnctl::health {

/// The single checks.

// What the store alone tells.
Said checkStore(const Facts& facts);
Said checkProfile(const Facts& facts);
Said checkFeature(const Facts& facts);
Said checkLastScan(const Facts& facts);
Said checkLists(const Facts& facts);
Said checkProxy(const Facts& facts);

// What waits to be done.
Said checkScanRequest(const Facts& facts);
Said checkInstallationRequest(const Facts& facts);
Said checkQueue(const Facts& facts);
Said checkCompletion(const Facts& facts);
Said checkDeployment(const Facts& facts);
Said checkPatchStorage(const Facts& facts);

// Processes, tasks and services.
Said checkPlugin(const Facts& facts);
Said checkAgentProgram(const Facts& facts);
Said checkAgentRun(const Facts& facts);
Said checkTask(const Facts& facts);
Said checkService(const Facts& facts);
Said checkReboot(const Facts& facts);
Said checkUpdates(const Facts& facts);

// The log, and what it tells.
Said checkLogFolder(const Facts& facts);
Said checkLogLines(const Facts& facts);
Said checkLogLevel(const Facts& facts);
Said checkExitCodes(const Facts& facts);

} // namespace tarnctl::health
