#pragma once

#include "common/settings/installationsettings.h"
#include "common/settings/remoteoperationssettings.h"
#include "common/settings/scanningsettings.h"

namespace vx::tarn {

/// Keys under "windows.tarnpatch.communication.".
class CommunicationSettings : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    Read<Choice<UseHttpProxyItem>> useHttpProxy{
        m_store, L"windows.tarnpatch.communication.use_http_proxy", UseHttpProxyItem::FromProductConfiguration};
    /// Used when useHttpProxy is UserDefined.
    Read<Text> userDefinedProxy{m_store, L"windows.tarnpatch.communication.user_defined_proxy", ""};
    Read<Bool> ignoreRevocationServerOfflineError{
        m_store, L"windows.tarnpatch.communication.ignore_revocation_server_offline_error", false};
    /// Address of the management server's proxy.
    Read<Text> hqProxyUrl{m_store, L"windows.tarnpatch.communication.hq_proxy_url", ""};
};

/// Keys under "windows.tarnpatch.certificates.".
class CertificatesSettings : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    /// The agent's certificates were put into the system's store.
    ReadWrite<Bool> alreadyInStorage{m_store, L"windows.tarnpatch.certificates.already_in_storage", false};
};

/// Keys under "windows.tarnpatch.current_status.", published for other components.
class CurrentStatusSettings : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    /// Of patches to install.
    Write<List> patchesToInstall{m_store, L"windows.tarnpatch.current_status.patches_to_install"};
};

/// Keys under "windows.tarnpatch.recovery.".
class RecoverySettings : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    /// What outages, a start and changes at the same time leave undone is done later. Read once per run, and not
    /// through the cache: whoever does not want it must not see it in the log.
    Read<Bool> enabled{m_store, L"windows.tarnpatch.recovery.enabled", false};
};

/// The table of the keys under "windows.tarnpatch.". Sections mirror the path of the keys, and each key has its one
/// row. Each call of a row goes to the store; a copy copies the handle. Any thread.
class TarnpatchSettings : public SettingsSection {
public:
    explicit TarnpatchSettings(KeyStore store);
    TarnpatchSettings(const TarnpatchSettings&);
    ~TarnpatchSettings();

    /// The master switch.
    Read<Bool> enabled{m_store, L"windows.tarnpatch.enabled", true};

    ScanningSettings scanning{m_store};
    InstallationSettings installation{m_store};
    CommunicationSettings communication{m_store};
    RemoteOperationsSettings remoteOperations{m_store};
    CertificatesSettings certificates{m_store};
    CurrentStatusSettings currentStatus{m_store};
    RecoverySettings recovery{m_store};
};

} // namespace vx::tarn
