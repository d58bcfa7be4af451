#pragma once

#include "common/settings/keykinds.h"

namespace vx::tarn {

/// The scan at the first start after boot.
class StartupScanSettings : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    Read<Bool> enabled{m_store, L"windows.tarnpatch.scanning.automatic.scanning_on_system_startup.enabled", true};
    /// The fixed part of the delay.
    Read<Minutes> delay{m_store, L"windows.tarnpatch.scanning.automatic.scanning_on_system_startup.delay", 1};
    /// The upper bound of the random part of the delay.
    Read<Minutes> randomizationInterval{
        m_store, L"windows.tarnpatch.scanning.automatic.scanning_on_system_startup.randomization_interval", 5};
};

/// Scans that the handler starts by itself.
class AutomaticScanSettings : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    /// The longest allowed age of the last scan.
    Read<Hours> maximumRescanningPeriod{m_store, L"windows.tarnpatch.scanning.automatic.maximum_rescanning_period", 24};
    /// The period of the action scheduler.
    Read<Minutes> pollingInterval{m_store, L"windows.tarnpatch.scanning.automatic.polling_interval", 10};

    StartupScanSettings scanningOnSystemStartup{m_store};
};

/// Keys under "windows.tarnpatch.scanning.".
class ScanningSettings : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    /// The agent alone reads these two.
    Watched excludeUpdatesByType{m_store, L"windows.tarnpatch.scanning.exclude_updates.by_type"};
    Watched excludeUpdatesByRule{m_store, L"windows.tarnpatch.scanning.exclude_updates.by_rule"};

    AutomaticScanSettings automatic{m_store};
};

} // namespace vx::tarn
