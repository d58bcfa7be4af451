#include "common/settings/scanningsettings.h"

namespace vx::tarn {

bool StartupScanSettings::enabled() const
{
    return readBool(L"windows.tarnpatch.scanning.automatic.scanning_on_system_startup.enabled", true);
}

std::chrono::minutes StartupScanSettings::delay() const
{
    return std::chrono::minutes(readInt32(L"windows.tarnpatch.scanning.automatic.scanning_on_system_startup.delay", 1));
}

std::chrono::minutes StartupScanSettings::randomizationInterval() const
{
    return std::chrono::minutes(
        readInt32(L"windows.tarnpatch.scanning.automatic.scanning_on_system_startup.randomization_interval", 5));
}

AutomaticScanSettings::AutomaticScanSettings(const std::shared_ptr<settings::Settings>& store)
    : SettingsSection(store), scanningOnSystemStartup(store)
{}

std::chrono::hours AutomaticScanSettings::maximumRescanningPeriod() const
{
    return std::chrono::hours(readInt32(L"windows.tarnpatch.scanning.automatic.maximum_rescanning_period", 24));
}

std::chrono::minutes AutomaticScanSettings::pollingInterval() const
{
    return std::chrono::minutes(readInt32(L"windows.tarnpatch.scanning.automatic.polling_interval", 10));
}

ScanningSettings::ScanningSettings(const std::shared_ptr<settings::Settings>& store)
    : SettingsSection(store), automatic(store)
{}

} // namespace vx::tarn
