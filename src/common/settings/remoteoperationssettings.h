#pragma once

#include "common/settings/keykinds.h"
#include "common/settings/settingsenumerations.h"

namespace vx::tarn {

/// The signal counters of remote scan requests.
class RemoteScanSettings : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    Read<Int64> start{m_store, L"windows.tarnpatch.remote_operations.scan_for_updates.start", 0};
    /// The last acknowledged value of start.
    ReadWrite<Int64> ack{m_store, L"windows.tarnpatch.remote_operations.scan_for_updates.ack", 0};
};

/// The signal counters of remote installation requests, the request and its result.
class RemoteInstallationSettings : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    Read<Int64> start{m_store, L"windows.tarnpatch.remote_operations.install_updates.start", 0};
    /// The last acknowledged value of start.
    ReadWrite<Int64> ack{m_store, L"windows.tarnpatch.remote_operations.install_updates.ack", 0};
    /// Of the last remote installation.
    Write<Choice<ResultItem>> result{m_store, L"windows.tarnpatch.remote_operations.install_updates.result"};
    /// The operation descriptor.
    Read<Text> updatesToInstall{m_store, L"windows.tarnpatch.remote_operations.install_updates.updates_to_install", ""};
};

/// Keys under "windows.tarnpatch.remote_operations.".
class RemoteOperationsSettings : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    RemoteScanSettings scanForUpdates{m_store};
    RemoteInstallationSettings installUpdates{m_store};
};

} // namespace vx::tarn
