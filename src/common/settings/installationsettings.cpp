#include "common/settings/installationsettings.h"

#include <nlohmann/json.hpp>

namespace vx::tarn {

ModeItem AutomaticInstallationSettings::mode() const
{
    return fromText<ModeItem>(readString(L"windows.tarnpatch.installation.automatic.mode", L"disable"));
}

FrequencyItem AutomaticInstallationSettings::frequency() const
{
    return fromText<FrequencyItem>(readString(L"windows.tarnpatch.installation.automatic.frequency", L"every_day"));
}

std::int32_t AutomaticInstallationSettings::hour() const
{
    return readInt32(L"windows.tarnpatch.installation.automatic.hour", 12);
}

bool RebootSettings::askUser() const
{
    return readBool(L"windows.tarnpatch.installation.reboot.ask_user", true);
}

ShowFlyerPolicyItem RebootSettings::showFlyerPolicy() const
{
    return fromText<ShowFlyerPolicyItem>(
        readString(L"windows.tarnpatch.installation.reboot.show_flyer_policy", L"all_users"));
}

std::chrono::seconds RebootSettings::forceInSeconds() const
{
    return std::chrono::seconds(readInt64(L"windows.tarnpatch.installation.reboot.force_in_seconds", -1));
}

std::chrono::hours RebootSettings::forceIn() const
{
    return std::chrono::hours(readInt32(L"windows.tarnpatch.installation.reboot.force_in", 24));
}

std::chrono::minutes RebootSettings::postponeFor() const
{
    return std::chrono::minutes(readInt32(L"windows.tarnpatch.installation.reboot.postpone_for", 30));
}

std::chrono::seconds RebootSettings::forcedDelay() const
{
    static constexpr std::chrono::seconds notSet(-1);
    const std::chrono::seconds delay = forceInSeconds();
    return delay == notSet ? forceIn() : delay;
}

bool CompletionSettings::wait() const
{
    return readBool(L"windows.tarnpatch.installation.completion.wait", false);
}

void CompletionSettings::setWait(bool value) const
{
    store().setBoolValue(L"windows.tarnpatch.installation.completion.wait", value);
}

std::chrono::minutes CompletionSettings::timeout() const
{
    return std::chrono::minutes(readInt32(L"windows.tarnpatch.installation.completion.timeout", 15));
}

std::chrono::seconds CompletionSettings::timestamp() const
{
    return std::chrono::seconds(readInt64(L"windows.tarnpatch.installation.completion.timestamp", 0));
}

InstallationSettings::InstallationSettings(const std::shared_ptr<settings::Settings>& store)
    : SettingsSection(store), automatic(store), reboot(store), completion(store)
{}

bool InstallationSettings::inProgress() const
{
    return readBool(L"windows.tarnpatch.installation.in_progress", false);
}

void InstallationSettings::setInProgress(bool value) const
{
    store().setBoolValue(L"windows.tarnpatch.installation.in_progress", value);
}

nlohmann::json InstallationSettings::deploymentQueue() const
{
    return readJson(L"windows.tarnpatch.installation.deployment_queue", nlohmann::json::array());
}

void InstallationSettings::setDeploymentQueue(const nlohmann::json& value) const
{
    store().setJsonValue(L"windows.tarnpatch.installation.deployment_queue", value);
}

} // namespace vx::tarn
