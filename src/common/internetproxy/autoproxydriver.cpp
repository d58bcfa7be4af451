#include "common/internetproxy/autoproxydriver.h"

#include "vxtl/scopeexit.h"

#include <windows.h>

#include <winhttp.h>

namespace vx::tarn::common {

std::variant<DetectedProxy, DetectionFailure> AutoProxyDriver::detect(const std::wstring& url)
{
    using Step = DetectionFailure::Step;
    const HINTERNET session =
        WinHttpOpen(L"Vantorix Proxy Resolver", WINHTTP_ACCESS_TYPE_DEFAULT_PROXY, nullptr, nullptr, 0);
    if (!session)
        return DetectionFailure{Step::Open, GetLastError()};
    const ScopeExit closed([&] { WinHttpCloseHandle(session); });
    WINHTTP_AUTOPROXY_OPTIONS options = {};
    options.dwFlags = WINHTTP_AUTOPROXY_AUTO_DETECT;
    options.dwAutoDetectFlags = WINHTTP_AUTO_DETECT_TYPE_DHCP | WINHTTP_AUTO_DETECT_TYPE_DNS_A;
    options.fAutoLogonIfChallenged = TRUE;
    WINHTTP_PROXY_INFO info = {};
    if (!WinHttpGetProxyForUrl(session, url.c_str(), &options, &info))
        return DetectionFailure{Step::GetProxy, GetLastError()};
    const ScopeExit freed([&] {
        GlobalFree(info.lpszProxy);
        GlobalFree(info.lpszProxyBypass);
    });
    return DetectedProxy{info.lpszProxy ? info.lpszProxy : L"", info.lpszProxyBypass ? info.lpszProxyBypass : L""};
}

} // namespace vx::tarn::common
