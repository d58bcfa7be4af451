#pragma once

#include "common/settings/keykinds.h"
#include "common/settings/settingsenumerations.h"

namespace vx::tarn {

/// What the automatic installation installs and when.
class AutomaticInstallationSettings : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    Read<Choice<ModeItem>> mode{m_store, L"windows.tarnpatch.installation.automatic.mode", ModeItem::Disable};
    Read<Choice<FrequencyItem>> frequency{
        m_store, L"windows.tarnpatch.installation.automatic.frequency", FrequencyItem::EveryDay};
    Read<HourOfDay> hour{m_store, L"windows.tarnpatch.installation.automatic.hour", 12};
};

/// How a reboot is asked for and forced.
class RebootSettings : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    Read<Bool> askUser{m_store, L"windows.tarnpatch.installation.reboot.ask_user", true};
    Read<Choice<ShowFlyerPolicyItem>> showFlyerPolicy{
        m_store, L"windows.tarnpatch.installation.reboot.show_flyer_policy", ShowFlyerPolicyItem::AllUsers};
    /// -1 means not set.
    Read<Seconds> forceInSeconds{m_store, L"windows.tarnpatch.installation.reboot.force_in_seconds", -1};
    /// Used when forceInSeconds is not set.
    Read<Hours> forceIn{m_store, L"windows.tarnpatch.installation.reboot.force_in", 24};
    /// The length of one postponement in the reboot dialog.
    Read<Minutes> postponeFor{m_store, L"windows.tarnpatch.installation.reboot.postpone_for", 30};

    /// When a reboot is forced: forceInSeconds as it stands, 0 and negative numbers too, and forceIn when that
    /// is not set.
    std::chrono::seconds forcedDelay() const;
};

/// The wait for a deployment that goes on after a reboot.
class CompletionSettings : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    ReadWrite<Bool> wait{m_store, L"windows.tarnpatch.installation.completion.wait", false};
    Read<Minutes> timeout{m_store, L"windows.tarnpatch.installation.completion.timeout", 15};
    /// Start of the wait.
    Read<Timestamp> timestamp{m_store, L"windows.tarnpatch.installation.completion.timestamp", 0};
};

/// Keys under "windows.tarnpatch.installation.".
class InstallationSettings : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    /// A deployment is running and spans a restart of the handler.
    ReadWrite<Bool> inProgress{m_store, L"windows.tarnpatch.installation.in_progress", false};
    /// Of deployment items.
    ReadWrite<List> deploymentQueue{m_store, L"windows.tarnpatch.installation.deployment_queue"};

    AutomaticInstallationSettings automatic{m_store};
    RebootSettings reboot{m_store};
    CompletionSettings completion{m_store};
};

} // namespace vx::tarn
