#include "common/internetproxy/configuredinternetproxy.h"

#include "common/internetproxy/proxyinfo.h"
#include "common/internetproxy/sessiondriver.h"
#include "common/settings/tarnpatchsettings.h"
#include "logging/logstream.h"
#include "vxtl/credentials.h"

#include <utility>

namespace vx::tarn::common {

using logging::Level;
using logging::LogStream;

ConfiguredInternetProxy::ConfiguredInternetProxy(
    std::shared_ptr<settings::Settings> settings, std::shared_ptr<ISessionDriver> driver, bool ignoreCertErrors)
    : InternetProxy(std::move(driver), ignoreCertErrors), m_settings(std::move(settings))
{}

void* ConfiguredInternetProxy::openThrough(
    const ProxyInfo& proxy, const std::wstring& userAgent, const std::wstring& url)
{
    LogStream(Level::Info) << "Proxy: " << proxy.toString(ProxyInfo::Passwords::Hidden);
    void* const handle = openSession(proxy, userAgent, url);
    if (!handle) {
        LogStream(Level::Error) << "Failed to open the internet connection (UA: " << userAgent
                                << ", url: " << withoutPasswords(url) << ", host: " << proxy.shownHost()
                                << "). Last error code: " << m_driver->lastError();
        return nullptr;
    }
    logIn(handle, proxy);
    applyCertificateSetting(handle);
    return handle;
}

void* ConfiguredInternetProxy::openSession(
    const ProxyInfo& proxy, const std::wstring& userAgent, const std::wstring& url)
{
    if (!isHQAddress(url, CommunicationSettings(m_settings).hqProxyUrl()))
        return m_driver->open(userAgent, proxy.toStringAddress());
    LogStream(Level::Info) << "But isHQAddress is true";
    return m_driver->open(userAgent, std::nullopt);
}

// A refusal shows when the proxy asks for what it was not given.
void ConfiguredInternetProxy::logIn(void* handle, const ProxyInfo& proxy)
{
    if (!proxy.user.empty()) {
        LogStream(Level::Info) << "Using proxy username.";
        m_driver->setProxyUser(handle, proxy.user);
    }
    if (!proxy.password.empty()) {
        LogStream(Level::Info) << "Using proxy password.";
        m_driver->setProxyPassword(handle, proxy.password);
    }
}

} // namespace vx::tarn::common
