#pragma once

#include <string>

namespace vx::tarn::common {

/// The machine's default proxy.
struct ProxyConfiguration {
    std::wstring proxy;  ///< empty: none
    std::wstring bypass; ///< servers that are reached without it

    friend bool operator==(const ProxyConfiguration&, const ProxyConfiguration&) = default;
};

/// Reads and writes the default proxy of the whole machine. Any thread; nothing keeps other writers off.
class IWinHttpProxyChanger {
public:
    virtual ~IWinHttpProxyChanger() = default;
    /// False, logged, when the system refuses.
    virtual bool setProxy(const ProxyConfiguration& configuration) = 0;
    virtual bool getProxy(ProxyConfiguration& configuration) = 0;
};

} // namespace vx::tarn::common
