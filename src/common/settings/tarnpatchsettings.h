#pragma once

#include "common/settings/installationsettings.h"
#include "common/settings/remoteoperationssettings.h"
#include "common/settings/scanningsettings.h"

namespace vx::tarn {

/// Keys under "windows.tarnpatch.communication.".
class CommunicationSettings : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    UseHttpProxyItem useHttpProxy() const;
    /// Used when useHttpProxy is UserDefined.
    std::wstring userDefinedProxy() const;
    bool ignoreRevocationServerOfflineError() const;
    /// Address of the management server's proxy.
    std::wstring hqProxyUrl() const;
};

/// Keys under "windows.tarnpatch.certificates.".
class CertificatesSettings : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    /// The agent's certificates were put into the system's store.
    bool alreadyInStorage() const;
    void setAlreadyInStorage(bool value) const;
};

/// Keys under "windows.tarnpatch.current_status.", published for other components.
class CurrentStatusSettings : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    /// An array of patches to install.
    void setPatchesToInstall(const nlohmann::json& value) const;
};

/// The typed view of the keys under "windows.tarnpatch.". Each call goes to the store; a copy copies the handle.
/// Any thread. Sections mirror the path of the keys, and each key has its getter and, where the handler writes
/// it, its setter. A getter answers its default for a missing key only; other failures of the store pass on,
/// and a text that no enumerator has throws std::invalid_argument.
class TarnpatchSettings : public SettingsSection {
public:
    explicit TarnpatchSettings(const std::shared_ptr<settings::Settings>& store);

    /// The master switch.
    bool enabled() const;

    ScanningSettings scanning;
    InstallationSettings installation;
    CommunicationSettings communication;
    RemoteOperationsSettings remoteOperations;
    CertificatesSettings certificates;
    CurrentStatusSettings currentStatus;
};

} // namespace vx::tarn
