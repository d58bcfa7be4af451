#pragma once

#include "common/settings/keykinds.h"

namespace vx::tarn {

/// The last scan.
class LastScanningStatus : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    /// Of the last start for a scan; -1 means never.
    ReadWrite<Timestamp> timestamp{m_store, L"status.windows.tarnpatch.scanning.last_scanning.timestamp", -1};
    /// Of missing updates, filled by the agent.
    ReadWrite<List> missingUpdates{m_store, L"status.windows.tarnpatch.scanning.last_scanning.missing_updates"};
};

/// Keys under "status.windows.tarnpatch.scanning.".
class ScanningStatus : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    LastScanningStatus lastScanning{m_store};
};

/// The last installation.
class LastInstallationStatus : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    ReadWrite<Bool> restartComputerNeeded{
        m_store, L"status.windows.tarnpatch.installation.last_installation.restart_computer_needed", false};
};

/// The log of installations, written by the agent.
class InstallationLogStatus : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    /// Of log entries.
    Read<List> entries{m_store, L"status.windows.tarnpatch.installation.log.entries"};
};

/// Keys under "status.windows.tarnpatch.installation.".
class InstallationStatus : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    LastInstallationStatus lastInstallation{m_store};
    InstallationLogStatus log{m_store};
};

/// The table of the keys under "status.windows.tarnpatch.": reports, and the only memory across restarts, so they are
/// read back. Otherwise as TarnpatchSettings.
class TarnpatchStatus : public SettingsSection {
public:
    explicit TarnpatchStatus(KeyStore store);
    TarnpatchStatus(const TarnpatchStatus&);
    ~TarnpatchStatus();

    /// The effective enabled state.
    ReadWrite<Bool> enabled{m_store, L"status.windows.tarnpatch.enabled", true};

    ScanningStatus scanning{m_store};
    InstallationStatus installation{m_store};
};

} // namespace vx::tarn
