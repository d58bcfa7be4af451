#include "common/settings/tarnpatchsettings.h"

#include <nlohmann/json.hpp>

namespace vx::tarn {

UseHttpProxyItem CommunicationSettings::useHttpProxy() const
{
    return fromText<UseHttpProxyItem>(
        readString(L"windows.tarnpatch.communication.use_http_proxy", L"from_product_configuration"));
}

std::wstring CommunicationSettings::userDefinedProxy() const
{
    return readString(L"windows.tarnpatch.communication.user_defined_proxy", L"");
}

bool CommunicationSettings::ignoreRevocationServerOfflineError() const
{
    return readBool(L"windows.tarnpatch.communication.ignore_revocation_server_offline_error", false);
}

std::wstring CommunicationSettings::hqProxyUrl() const
{
    return readString(L"windows.tarnpatch.communication.hq_proxy_url", L"");
}

bool CertificatesSettings::alreadyInStorage() const
{
    return readBool(L"windows.tarnpatch.certificates.already_in_storage", false);
}

void CertificatesSettings::setAlreadyInStorage(bool value) const
{
    store().setBoolValue(L"windows.tarnpatch.certificates.already_in_storage", value);
}

void CurrentStatusSettings::setPatchesToInstall(const nlohmann::json& value) const
{
    store().setJsonValue(L"windows.tarnpatch.current_status.patches_to_install", value);
}

TarnpatchSettings::TarnpatchSettings(const std::shared_ptr<settings::Settings>& store)
    : SettingsSection(store), scanning(store), installation(store), communication(store), remoteOperations(store),
      certificates(store), currentStatus(store)
{}

bool TarnpatchSettings::enabled() const
{
    return readBool(L"windows.tarnpatch.enabled", true);
}

} // namespace vx::tarn
