#pragma once

#include "common/settings/settingsenumerations.h"
#include "common/settings/settingssection.h"

#include <chrono>

namespace vx::tarn {

/// What the automatic installation installs and when.
class AutomaticInstallationSettings : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    ModeItem mode() const;
    FrequencyItem frequency() const;
    /// Hour of the day.
    std::int32_t hour() const;
};

/// How a reboot is asked for and forced.
class RebootSettings : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    bool askUser() const;
    ShowFlyerPolicyItem showFlyerPolicy() const;
    /// -1 means not set.
    std::chrono::seconds forceInSeconds() const;
    /// Used when forceInSeconds is not set.
    std::chrono::hours forceIn() const;
    /// The length of one postponement in the reboot dialog.
    std::chrono::minutes postponeFor() const;
    /// When a reboot is forced: forceInSeconds as it stands, 0 and negative numbers too, and forceIn when that
    /// is not set.
    std::chrono::seconds forcedDelay() const;
};

/// The wait for a deployment that goes on after a reboot.
class CompletionSettings : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    bool wait() const;
    void setWait(bool value) const;
    std::chrono::minutes timeout() const;
    /// Start of the wait, since the Unix epoch.
    std::chrono::seconds timestamp() const;
};

/// Keys under "windows.tarnpatch.installation.".
class InstallationSettings : public SettingsSection {
public:
    explicit InstallationSettings(const std::shared_ptr<settings::Settings>& store);

    /// A deployment is running and spans a restart of the handler.
    bool inProgress() const;
    void setInProgress(bool value) const;
    /// An array of deployment items.
    nlohmann::json deploymentQueue() const;
    void setDeploymentQueue(const nlohmann::json& value) const;

    AutomaticInstallationSettings automatic;
    RebootSettings reboot;
    CompletionSettings completion;
};

} // namespace vx::tarn
