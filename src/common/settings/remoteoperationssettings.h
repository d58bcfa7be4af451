#pragma once

#include "common/settings/settingsenumerations.h"
#include "common/settings/settingssection.h"

namespace vx::tarn {

/// The signal counters of remote scan requests.
class RemoteScanSettings : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    std::int64_t start() const;
    /// The last acknowledged value of start.
    std::int64_t ack() const;
    void setAck(std::int64_t value) const;
};

/// The signal counters of remote installation requests, the request and its result.
class RemoteInstallationSettings : public SettingsSection {
public:
    using SettingsSection::SettingsSection;

    std::int64_t start() const;
    /// The last acknowledged value of start.
    std::int64_t ack() const;
    void setAck(std::int64_t value) const;
    /// Of the last remote installation.
    void setResult(ResultItem value) const;
    /// The operation descriptor.
    std::wstring updatesToInstall() const;
};

/// Keys under "windows.tarnpatch.remote_operations.".
class RemoteOperationsSettings : public SettingsSection {
public:
    explicit RemoteOperationsSettings(const std::shared_ptr<settings::Settings>& store);

    RemoteScanSettings scanForUpdates;
    RemoteInstallationSettings installUpdates;
};

} // namespace vx::tarn
