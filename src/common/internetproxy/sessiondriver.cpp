#include "common/internetproxy/sessiondriver.h"

#include <windows.h>

#include <wininet.h>

namespace vx::tarn::common {

namespace {

/// The system takes the length of a text in characters.
bool setText(void* session, DWORD option, const std::wstring& text)
{
    return InternetSetOptionW(session, option, const_cast<wchar_t*>(text.c_str()), static_cast<DWORD>(text.size())) !=
           FALSE;
}

} // namespace

void* SessionDriver::open(const std::wstring& userAgent, const std::optional<std::wstring>& proxyAddress)
{
    if (proxyAddress)
        return InternetOpenW(userAgent.c_str(), INTERNET_OPEN_TYPE_PROXY, proxyAddress->c_str(), nullptr, 0);
    return InternetOpenW(userAgent.c_str(), INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0);
}

bool SessionDriver::setProxyUser(void* session, const std::wstring& user)
{
    return setText(session, INTERNET_OPTION_PROXY_USERNAME, user);
}

bool SessionDriver::setProxyPassword(void* session, const std::wstring& password)
{
    return setText(session, INTERNET_OPTION_PROXY_PASSWORD, password);
}

std::optional<unsigned long> SessionDriver::securityFlags(void* session)
{
    DWORD flags = 0;
    DWORD size = sizeof(flags);
    if (!InternetQueryOptionW(session, INTERNET_OPTION_SECURITY_FLAGS, &flags, &size))
        return std::nullopt;
    return flags;
}

bool SessionDriver::setSecurityFlags(void* session, unsigned long flags)
{
    return InternetSetOptionW(session, INTERNET_OPTION_SECURITY_FLAGS, &flags, sizeof(flags)) != FALSE;
}

unsigned long SessionDriver::lastError()
{
    return GetLastError();
}

} // namespace vx::tarn::common
