#pragma once

#include "common/internetproxy/configuredinternetproxy.h"

namespace vx::tarn::common {

class IAutoProxyDriver;

/// Goes through the proxy that the product uses at the moment; without one through that which the network names, and
/// without that directly.
class ProductInternetProxy : public ConfiguredInternetProxy {
public:
    ProductInternetProxy(std::shared_ptr<settings::Settings> settings, std::shared_ptr<ISessionDriver> driver,
        std::shared_ptr<IAutoProxyDriver> autoProxyDriver, bool ignoreCertErrors);

    void* openInternetConnection(const std::wstring& userAgent, const std::wstring& url) override;
    std::wstring proxyText() override;
    /// The proxy's text that the network names for the URL, or empty. Blocks on the network.
    std::wstring getAutoProxy(const std::wstring& url);

private:
    const std::shared_ptr<IAutoProxyDriver> m_autoProxyDriver;
};

} // namespace vx::tarn::common
