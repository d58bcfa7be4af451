#include "common/settings/tarnpatchstatus.h"

#include <nlohmann/json.hpp>

namespace vx::tarn {

std::int64_t LastScanningStatus::timestamp() const
{
    return readInt64(L"status.windows.tarnpatch.scanning.last_scanning.timestamp", -1);
}

void LastScanningStatus::setTimestamp(std::int64_t value) const
{
    store().setInt64Value(L"status.windows.tarnpatch.scanning.last_scanning.timestamp", value);
}

nlohmann::json LastScanningStatus::missingUpdates() const
{
    return readJson(L"status.windows.tarnpatch.scanning.last_scanning.missing_updates", nlohmann::json::array());
}

void LastScanningStatus::setMissingUpdates(const nlohmann::json& value) const
{
    store().setJsonValue(L"status.windows.tarnpatch.scanning.last_scanning.missing_updates", value);
}

ScanningStatus::ScanningStatus(const std::shared_ptr<settings::Settings>& store)
    : SettingsSection(store), lastScanning(store)
{}

bool LastInstallationStatus::restartComputerNeeded() const
{
    return readBool(L"status.windows.tarnpatch.installation.last_installation.restart_computer_needed", false);
}

void LastInstallationStatus::setRestartComputerNeeded(bool value) const
{
    store().setBoolValue(L"status.windows.tarnpatch.installation.last_installation.restart_computer_needed", value);
}

nlohmann::json InstallationLogStatus::entries() const
{
    return readJson(L"status.windows.tarnpatch.installation.log.entries", nlohmann::json::array());
}

InstallationStatus::InstallationStatus(const std::shared_ptr<settings::Settings>& store)
    : SettingsSection(store), lastInstallation(store), log(store)
{}

TarnpatchStatus::TarnpatchStatus(const std::shared_ptr<settings::Settings>& store)
    : SettingsSection(store), scanning(store), installation(store)
{}

bool TarnpatchStatus::enabled() const
{
    return readBool(L"status.windows.tarnpatch.enabled", true);
}

void TarnpatchStatus::setEnabled(bool value) const
{
    store().setBoolValue(L"status.windows.tarnpatch.enabled", value);
}

} // namespace vx::tarn
