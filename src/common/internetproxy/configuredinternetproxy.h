#pragma once

#include "common/internetproxy/internetproxy.h"
#include "settings-api/settings.h"

namespace vx::tarn::common {

struct ProxyInfo;

/// What the ways through a named proxy have in common.
class ConfiguredInternetProxy : public InternetProxy {
protected:
    ConfiguredInternetProxy(
        std::shared_ptr<settings::Settings> settings, std::shared_ptr<ISessionDriver> driver, bool ignoreCertErrors);

    /// Goes directly to the management server, to all others through the proxy.
    void* openThrough(const ProxyInfo& proxy, const std::wstring& userAgent, const std::wstring& url);

    const std::shared_ptr<settings::Settings> m_settings;

private:
    void* openSession(const ProxyInfo& proxy, const std::wstring& userAgent, const std::wstring& url);
    void logIn(void* handle, const ProxyInfo& proxy);
};

} // namespace vx::tarn::common
