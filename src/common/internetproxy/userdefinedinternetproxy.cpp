#include "common/internetproxy/userdefinedinternetproxy.h"

#include "common/settings/tarnpatchsettings.h"

#include <utility>

namespace vx::tarn::common {

UserDefinedInternetProxy::UserDefinedInternetProxy(
    std::shared_ptr<settings::Settings> settings, std::shared_ptr<ISessionDriver> driver, bool ignoreCertErrors)
    : ConfiguredInternetProxy(std::move(settings), std::move(driver), ignoreCertErrors),
      m_proxy(ProxyInfo::parse(UserDefinedInternetProxy::proxyText()))
{}

void* UserDefinedInternetProxy::openInternetConnection(const std::wstring& userAgent, const std::wstring& url)
{
    return openThrough(m_proxy, userAgent, url);
}

std::wstring UserDefinedInternetProxy::proxyText()
{
    return CommunicationSettings(m_settings).userDefinedProxy();
}

} // namespace vx::tarn::common
