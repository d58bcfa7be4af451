#pragma once

#include "common/winhttpproxy/iwinhttpproxychanger.h"

#include <memory>

namespace vx::tarn::common {

/// The machine's default proxy is another one while this lives. Only one at a time may live on a machine, which is the
/// callers' affair. A machine without a proxy gets an empty one back.
class WinHTTPDefaultProxyChanger {
public:
    /// Throws BaseException when the present proxy can't be read or the new one not be set; nothing is changed then.
    WinHTTPDefaultProxyChanger(
        const ProxyConfiguration& configuration, std::shared_ptr<IWinHttpProxyChanger> implementation);
    /// A failure is logged, and the change stays.
    virtual ~WinHTTPDefaultProxyChanger();
    WinHTTPDefaultProxyChanger(const WinHTTPDefaultProxyChanger&) = delete;
    WinHTTPDefaultProxyChanger& operator=(const WinHTTPDefaultProxyChanger&) = delete;

private:
    const std::shared_ptr<IWinHttpProxyChanger> m_implementation;
    ProxyConfiguration m_saved;
};

} // namespace vx::tarn::common
