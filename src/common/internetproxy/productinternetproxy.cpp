#include "common/internetproxy/productinternetproxy.h"

#include "common/internetproxy/autoproxy.h"
#include "common/internetproxy/proxyinfo.h"
#include "common/internetproxy/sessiondriver.h"
#include "common/settings/hostsettings.h"
#include "logging/logstream.h"
#include "vxtl/credentials.h"

#include <utility>

namespace vx::tarn::common {

using logging::Level;
using logging::LogStream;

ProductInternetProxy::ProductInternetProxy(std::shared_ptr<settings::Settings> settings,
    std::shared_ptr<ISessionDriver> driver, std::shared_ptr<IAutoProxyDriver> autoProxyDriver, bool ignoreCertErrors)
    : ConfiguredInternetProxy(std::move(settings), std::move(driver), ignoreCertErrors),
      m_autoProxyDriver(std::move(autoProxyDriver))
{}

void* ProductInternetProxy::openInternetConnection(const std::wstring& userAgent, const std::wstring& url)
{
    std::wstring proxy = proxyText();
    if (proxy.empty()) {
        LogStream(Level::Warning) << "gorse2.current_proxy is empty. Will be user autoproxy.";
        proxy = getAutoProxy(url);
    }
    if (!proxy.empty())
        return openThrough(ProxyInfo::parse(proxy), userAgent, url);
    LogStream(Level::Warning) << "Failed to get proxy value. Will be used NoProxy configuration.";
    void* const handle = m_driver->open(userAgent, std::nullopt);
    applyCertificateSetting(handle);
    return handle;
}

std::wstring ProductInternetProxy::proxyText()
{
    return HostSettings(m_settings).currentProxy();
}

std::wstring ProductInternetProxy::getAutoProxy(const std::wstring& url)
{
    VX_LOG_SCOPE();
    if (isEnabled(Level::Debug))
        logging::logValues("url", withoutPasswords(url));
    return detectProxy(*m_autoProxyDriver, url);
}

} // namespace vx::tarn::common
