#pragma once

#include "common/internetproxy/internetproxy.h"

namespace vx::tarn::common {

/// Goes the way that the system is configured to go.
class NoInternetProxy : public InternetProxy {
public:
    NoInternetProxy(std::shared_ptr<ISessionDriver> driver, bool ignoreCertErrors);

    void* openInternetConnection(const std::wstring& userAgent, const std::wstring& url) override;
    std::wstring proxyText() override { return {}; }
};

} // namespace vx::tarn::common
