#pragma once

#include <string>
#include <variant>

namespace vx::tarn::common {

/// What the network says about the way to a URL.
struct DetectedProxy {
    std::wstring proxy;  ///< empty: none
    std::wstring bypass; ///< servers that are reached without it
};

/// Where detection got stuck, and the system's error.
struct DetectionFailure {
    enum class Step { Open, GetProxy };
    Step step;
    unsigned long error;
};

/// The detection of proxies by the network's own means, DHCP and DNS. Any thread.
class IAutoProxyDriver {
public:
    virtual ~IAutoProxyDriver() = default;
    /// May block for as long as the network takes to answer, or not to.
    virtual std::variant<DetectedProxy, DetectionFailure> detect(const std::wstring& url) = 0;
};

/// The real one. Throws Win32Exception when the system's library is missing.
class AutoProxyDriver : public IAutoProxyDriver {
public:
    std::variant<DetectedProxy, DetectionFailure> detect(const std::wstring& url) override;
};

} // namespace vx::tarn::common
