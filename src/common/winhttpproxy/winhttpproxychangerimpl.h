#pragma once

#include "common/winhttpproxy/iwinhttpproxychanger.h"

namespace vx::tarn::common {

/// The system's own setting; writing it takes an administrator. A configuration that is written always names a proxy,
/// if with an empty text: "none" is not written back as the system had it. Throws Win32Exception when the system's
/// library is missing. No log line holds a password.
class WinHTTPProxyChangerImpl : public IWinHttpProxyChanger {
public:
    bool setProxy(const ProxyConfiguration& configuration) override;
    bool getProxy(ProxyConfiguration& configuration) override;
};

} // namespace vx::tarn::common
