#include "common/settings/remoteoperationssettings.h"

#include "vxtl/str.h"

namespace vx::tarn {

std::int64_t RemoteScanSettings::start() const
{
    return readInt64(L"windows.tarnpatch.remote_operations.scan_for_updates.start", 0);
}

std::int64_t RemoteScanSettings::ack() const
{
    return readInt64(L"windows.tarnpatch.remote_operations.scan_for_updates.ack", 0);
}

void RemoteScanSettings::setAck(std::int64_t value) const
{
    store().setInt64Value(L"windows.tarnpatch.remote_operations.scan_for_updates.ack", value);
}

std::int64_t RemoteInstallationSettings::start() const
{
    return readInt64(L"windows.tarnpatch.remote_operations.install_updates.start", 0);
}

std::int64_t RemoteInstallationSettings::ack() const
{
    return readInt64(L"windows.tarnpatch.remote_operations.install_updates.ack", 0);
}

void RemoteInstallationSettings::setAck(std::int64_t value) const
{
    store().setInt64Value(L"windows.tarnpatch.remote_operations.install_updates.ack", value);
}

void RemoteInstallationSettings::setResult(ResultItem value) const
{
    store().setStringValue(L"windows.tarnpatch.remote_operations.install_updates.result", str::fromUtf8(toText(value)));
}

std::wstring RemoteInstallationSettings::updatesToInstall() const
{
    return readString(L"windows.tarnpatch.remote_operations.install_updates.updates_to_install", L"");
}

RemoteOperationsSettings::RemoteOperationsSettings(const std::shared_ptr<settings::Settings>& store)
    : SettingsSection(store), scanForUpdates(store), installUpdates(store)
{}

} // namespace vx::tarn
