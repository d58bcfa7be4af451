#include "common/internetproxy/autoproxy.h"

#include "common/internetproxy/autoproxydriver.h"
#include "logging/logstream.h"

#include <algorithm>
#include <cwctype>

namespace vx::tarn::common {

namespace {

using logging::Level;
using logging::LogStream;

constexpr std::wstring_view schemeEnd = L"://";

std::wstring lowerCase(std::wstring text)
{
    std::transform(text.begin(), text.end(), text.begin(),
        [](wchar_t c) { return static_cast<wchar_t>(std::towlower(static_cast<wint_t>(c))); });
    return text;
}

void log(const DetectionFailure& failure)
{
    if (failure.step == DetectionFailure::Step::Open)
        LogStream(Level::Error) << "WinHttpOpen failed. Last error code: " << failure.error;
    else
        LogStream(Level::Error) << "WinHttpGetProxyForUrl failed. Last error: " << failure.error;
}

/// With whatever stands between scheme and path.
std::wstring hostOf(const std::wstring& url)
{
    const std::wstring behindScheme = url.substr(url.find(schemeEnd) + schemeEnd.size());
    return behindScheme.substr(0, behindScheme.find(L'/'));
}

// The list is not taken apart and holds no patterns for us: a name that stands anywhere in it is passed by.
bool isBypassed(const std::wstring& host, const std::wstring& bypass)
{
    const bool isLocal = host.find(L'.') == std::wstring::npos;
    const std::wstring wanted = isLocal ? L"<local>" : lowerCase(host);
    if (bypass.empty() || lowerCase(bypass).find(wanted) == std::wstring::npos)
        return false;
    if (isLocal)
        LogStream(Level::Info) << "Bypass proxy for local servers. Return empty proxy.";
    else
        LogStream(Level::Info) << "Bypass proxy for this server. Return empty proxy.";
    return true;
}

} // namespace

std::wstring detectProxy(IAutoProxyDriver& driver, const std::wstring& url)
{
    const std::wstring wholeUrl = url.find(schemeEnd) == std::wstring::npos ? L"http://" + url : url;
    const auto answer = driver.detect(wholeUrl);
    if (const auto* failure = std::get_if<DetectionFailure>(&answer)) {
        log(*failure);
        return {};
    }
    const auto& [proxy, bypass] = std::get<DetectedProxy>(answer);
    LogStream(Level::Info) << "Got WINHTTP_PROXY_INFO::lpszProxyBypass: " << bypass;
    return isBypassed(hostOf(wholeUrl), bypass) ? std::wstring() : proxy;
}

} // namespace vx::tarn::common
