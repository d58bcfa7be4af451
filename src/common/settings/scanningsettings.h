#pragma once

#include "common/settings/settingssection.h"

#include <chrono>

namespace vx::tarn {

/// The scan at the first start after boot.
class StartupScanSettings : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    bool enabled() const;
    /// The fixed part of the delay.
    std::chrono::minutes delay() const;
    /// The upper bound of the random part of the delay.
    std::chrono::minutes randomizationInterval() const;
};

/// Scans that the handler starts by itself.
class AutomaticScanSettings : public SettingsSection {
public:
    explicit AutomaticScanSettings(const std::shared_ptr<settings::Settings>& store);

    /// The longest allowed age of the last scan.
    std::chrono::hours maximumRescanningPeriod() const;
    /// The period of the action scheduler.
    std::chrono::minutes pollingInterval() const;

    StartupScanSettings scanningOnSystemStartup;
};

/// Keys under "windows.tarnpatch.scanning.". The agent alone reads "exclude_updates.by_type" and
/// "exclude_updates.by_rule"; here they are only watched.
class ScanningSettings : public SettingsSection {
public:
    explicit ScanningSettings(const std::shared_ptr<settings::Settings>& store);

    static constexpr const wchar_t* excludeUpdatesByTypeKey = L"windows.tarnpatch.scanning.exclude_updates.by_type";
    static constexpr const wchar_t* excludeUpdatesByRuleKey = L"windows.tarnpatch.scanning.exclude_updates.by_rule";

    AutomaticScanSettings automatic;
};

} // namespace vx::tarn
