#pragma once

#include "common/internetproxy/configuredinternetproxy.h"
#include "common/internetproxy/proxyinfo.h"

namespace vx::tarn::common {

/// Goes through the proxy that the user's setting names at construction.
class UserDefinedInternetProxy : public ConfiguredInternetProxy {
public:
    /// Throws what reading the setting throws, and what ProxyInfo::parse throws.
    UserDefinedInternetProxy(
        std::shared_ptr<settings::Settings> settings, std::shared_ptr<ISessionDriver> driver, bool ignoreCertErrors);

    void* openInternetConnection(const std::wstring& userAgent, const std::wstring& url) override;
    /// As the setting is now.
    std::wstring proxyText() override;

private:
    const ProxyInfo m_proxy;
};

} // namespace vx::tarn::common
