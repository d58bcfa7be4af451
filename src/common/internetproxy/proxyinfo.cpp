#include "common/internetproxy/proxyinfo.h"

#include "common/utils/number.h"
#include "logging/logstream.h"

#include <stdexcept>
#include <string_view>

namespace vx::tarn::common {

namespace {

constexpr auto npos = std::wstring::npos;
constexpr std::wstring_view schemeEnd = L"://";
constexpr std::wstring_view hiddenPassword = L"<password>";

/// Empty when the end comes first.
std::wstring between(const std::wstring& text, std::size_t begin, std::size_t end)
{
    return begin < end ? text.substr(begin, end - begin) : std::wstring();
}

/// A password may hold an @ itself. Parsing takes the first one, and the rest of the password for something else.
std::wstring behindLastAt(const std::wstring& text)
{
    return text.substr(text.rfind(L'@') + 1);
}

} // namespace

ProxyInfo ProxyInfo::parse(const std::wstring& text)
{
    ProxyInfo result;
    std::size_t pos = 0;
    if (const auto separator = text.find(schemeEnd); separator != npos) {
        result.protocol = text.substr(0, separator);
        pos = separator + schemeEnd.size();
    }
    if (const auto at = text.find(L'@'); at != npos) {
        const auto colon = text.find(L':', pos);
        result.user = between(text, pos, colon < at ? colon : at);
        if (colon < at)
            result.password = between(text, colon + 1, at);
        pos = at + 1;
    }
    const auto colon = text.find(L':', pos);
    result.host = between(text, pos, colon);
    if (colon == npos)
        return result;
    const std::wstring port = text.substr(colon + 1);
    result.isHostDoubtful = port.find(L'@') != npos;
    try {
        result.port = static_cast<std::uint16_t>(utils::toInt32(port));
    } catch (const std::invalid_argument& e) {
        const std::string_view reason = e.what();
        logging::LogStream(logging::Level::Error) << "Failed to parse proxy port: '" << behindLastAt(port)
                                                  << "'. Reason: " << (reason.empty() ? "Unknown exception" : reason);
        return {};
    }
    return result;
}

std::wstring ProxyInfo::toString(Passwords passwords) const
{
    return passwords == Passwords::Shown ? write() : shown().write();
}

std::wstring ProxyInfo::toStringAddress() const
{
    return protocol + std::wstring(schemeEnd) + host + L':' + std::to_wstring(port);
}

std::wstring ProxyInfo::shownHost() const
{
    return isHostDoubtful ? std::wstring(hiddenPassword) : behindLastAt(host);
}

std::wstring ProxyInfo::write() const
{
    const std::wstring credentials = password.empty() ? user : user + L':' + password;
    return protocol + std::wstring(schemeEnd) + (user.empty() ? L"" : credentials + L'@') + host + L':' +
           std::to_wstring(port);
}

ProxyInfo ProxyInfo::shown() const
{
    ProxyInfo result = *this;
    if (!password.empty())
        result.password = hiddenPassword;
    // Credentials without a protocol in front of them may hold its separator; what is behind it is no user then.
    if (protocol.find_first_of(L":@") != npos)
        result.protocol = result.user = hiddenPassword;
    result.host = shownHost();
    if (isHostDoubtful)
        result.port = 0;
    return result;
}

} // namespace vx::tarn::common
