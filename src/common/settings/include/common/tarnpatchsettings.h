#pragma once

#include "settings-api/settings.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>

// The contract that other units code against; see the table of keys for types, units and defaults.
//
// TarnpatchSettings: keys under "windows.tarnpatch."; TarnpatchStatus: keys under
// "status.windows.tarnpatch.". Sections are public members that mirror the key path in lower camel
// case, getters are named after the last part of the key, setters are set + that name:
//   settings.enabled();
//   settings.scanning.automatic.pollingInterval();                    // std::chrono::minutes
//   settings.scanning.automatic.maximumRescanningPeriod();            // std::chrono::hours
//   settings.scanning.automatic.scanningOnSystemStartup.delay();      // std::chrono::minutes
//   settings.installation.completion.wait();  settings.installation.completion.setWait(false);
//   settings.installation.completion.timestamp();                     // std::chrono::seconds
//   settings.installation.inProgress();  settings.installation.setInProgress(false);
//   settings.remoteOperations.scanForUpdates.start();  ....setAck(value);   // std::int64_t
//   status.enabled();  status.setEnabled(true);
//   status.scanning.lastScanning.timestamp();  ....setTimestamp(seconds);   // std::int64_t seconds, -1 never
//   status.scanning.lastScanning.missingUpdates();  ....setMissingUpdates(json);
//   status.installation.lastInstallation.restartComputerNeeded();  ....setRestartComputerNeeded(false);
