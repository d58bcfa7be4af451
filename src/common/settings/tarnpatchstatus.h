#pragma once

#include "common/settings/settingssection.h"

namespace vx::tarn {

/// The last scan.
class LastScanningStatus : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    /// Seconds since the Unix epoch of the last start for a scan; -1 means never.
    std::int64_t timestamp() const;
    void setTimestamp(std::int64_t value) const;
    /// An array of missing updates, filled by the agent.
    nlohmann::json missingUpdates() const;
    void setMissingUpdates(const nlohmann::json& value) const;
};

/// Keys under "status.windows.tarnpatch.scanning.".
class ScanningStatus : public SettingsSection {
public:
    explicit ScanningStatus(const std::shared_ptr<settings::Settings>& store);

    LastScanningStatus lastScanning;
};

/// The last installation.
class LastInstallationStatus : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    bool restartComputerNeeded() const;
    void setRestartComputerNeeded(bool value) const;
};

/// The log of installations, written by the agent.
class InstallationLogStatus : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    /// An array of log entries.
    nlohmann::json entries() const;
};

/// Keys under "status.windows.tarnpatch.installation.".
class InstallationStatus : public SettingsSection {
public:
    explicit InstallationStatus(const std::shared_ptr<settings::Settings>& store);

    LastInstallationStatus lastInstallation;
    InstallationLogStatus log;
};

/// The typed view of the keys under "status.windows.tarnpatch.": reports, and the only memory across restarts, so
/// they are read back. Otherwise as TarnpatchSettings.
class TarnpatchStatus : public SettingsSection {
public:
    explicit TarnpatchStatus(const std::shared_ptr<settings::Settings>& store);

    /// The effective enabled state.
    bool enabled() const;
    void setEnabled(bool value) const;

    ScanningStatus scanning;
    InstallationStatus installation;
};

} // namespace vx::tarn
