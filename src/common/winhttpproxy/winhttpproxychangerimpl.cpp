#include "common/winhttpproxy/winhttpproxychangerimpl.h"

#include "logging/logstream.h"
#include "vxtl/credentials.h"
#include "vxtl/scopeexit.h"

#include <windows.h>

#include <winhttp.h>

namespace vx::tarn::common {

using logging::Level;
using logging::LogStream;

bool WinHTTPProxyChangerImpl::setProxy(const ProxyConfiguration& configuration)
{
    VX_LOG_SCOPE();
    const std::wstring shownProxy = withoutProxyPassword(configuration.proxy);
    logging::logValues("proxy, bypass", shownProxy, configuration.bypass);
    // The system's record takes writable texts.
    auto [proxy, bypass] = configuration;
    WINHTTP_PROXY_INFO info = {WINHTTP_ACCESS_TYPE_NAMED_PROXY, proxy.data(), bypass.data()};
    if (!WinHttpSetDefaultProxyConfiguration(&info)) {
        LogStream(Level::Error) << "Failed to set proxy " << shownProxy << " with bypass " << configuration.bypass
                                << ". Last error code: " << GetLastError();
        return false;
    }
    LogStream(Level::Info) << "Proxy " << shownProxy << " with bypass " << configuration.bypass << " has been set";
    return true;
}

bool WinHTTPProxyChangerImpl::getProxy(ProxyConfiguration& configuration)
{
    VX_LOG_SCOPE();
    WINHTTP_PROXY_INFO info = {};
    if (!WinHttpGetDefaultProxyConfiguration(&info)) {
        LogStream(Level::Error) << "Failed to get proxy configuration. Last error code: " << GetLastError();
        return false;
    }
    const ScopeExit freed([&] {
        GlobalFree(info.lpszProxy);
        GlobalFree(info.lpszProxyBypass);
    });
    configuration = {info.lpszProxy ? info.lpszProxy : L"", info.lpszProxyBypass ? info.lpszProxyBypass : L""};
    return true;
}

} // namespace vx::tarn::common
