// A proxy's text, a URL and the management server's URL, a line each. A proxy is read as by cutting the text into
// pieces, or refused for its port alone; URLs are escaped as by a table of what stays; the network's answer passes by
// what it names. A password does not show in what a log may hold, whatever stands around it.

#include "common/internetproxy/autoproxy.h"
#include "common/internetproxy/autoproxydriver.h"
#include "common/internetproxy/downloadurl.h"
#include "common/internetproxy/internetproxy.h"
#include "common/internetproxy/proxyinfo.h"
#include "common/utils/escapeurl.h"
#include "input.h"
#include "support/logcapture.h"
#include "vxtl/credentials.h"

#include <algorithm>
#include <utility>

using namespace vx::tarn::common;
using Passwords = ProxyInfo::Passwords;

namespace {

constexpr std::wstring_view secret = L"S3cr3t";

/// What stands before and behind the separator; nothing behind it, and false, without one.
std::pair<std::wstring, bool> cut(std::wstring& rest, std::wstring_view separator)
{
    const auto place = rest.find(separator);
    const std::wstring before = rest.substr(0, place);
    const bool isThere = place != std::wstring::npos;
    rest = isThere ? rest.substr(place + separator.size()) : L"";
    return {before, isThere};
}

/// Nothing for a text without digits; more than 32 bits for a number that has more.
std::optional<std::int64_t> number(std::wstring_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(L" \t\n\v\f\r"), text.size()));
    const bool isNegative = text.starts_with(L'-');
    if (isNegative || text.starts_with(L'+'))
        text.remove_prefix(1);
    const auto digits = text.substr(0, text.find_first_not_of(L"0123456789"));
    std::int64_t value = 0;
    for (const wchar_t digit : digits)
        value = std::min<std::int64_t>(value * 10 + (digit - L'0'), 1ll << 40);
    return digits.empty() ? std::nullopt : std::optional(isNegative ? -value : value);
}

/// Nothing for a port that is refused.
std::optional<ProxyInfo> readByCutting(const std::wstring& text)
{
    ProxyInfo result;
    std::wstring rest = text;
    const auto [protocol, hasProtocol] = cut(rest, L"://");
    if (hasProtocol)
        result.protocol = protocol;
    else
        rest = text;
    const bool isAtInProtocol = hasProtocol && protocol.find(L'@') != std::wstring::npos;
    if (isAtInProtocol) {
        rest = text;
        cut(rest, L"@");
    } else if (rest.find(L'@') != std::wstring::npos) {
        result.password = cut(rest, L"@").first;
        result.user = cut(result.password, L":").first;
    }
    const auto [host, hasPort] = cut(rest, L":");
    result.host = host;
    if (!hasPort)
        return result;
    const auto port = number(rest);
    if (!port)
        return ProxyInfo();
    result.port = static_cast<std::uint16_t>(*port);
    result.isHostDoubtful = rest.find(L'@') != std::wstring::npos;
    return *port == static_cast<std::int32_t>(*port) ? std::optional(result) : std::nullopt;
}

std::optional<ProxyInfo> read(const std::wstring& text)
{
    try {
        return ProxyInfo::parse(text);
    } catch (const std::out_of_range&) {
        return std::nullopt;
    }
}

void requireHidden(const std::wstring& text)
{
    fuzz::require(text.find(secret) == std::wstring::npos, "a password that shows");
}

std::wstring withSecret(const std::wstring& before, const std::wstring& behind)
{
    return before + L':' + std::wstring(secret) + behind + L'@' + before;
}

void checkProxyHiding(const std::wstring& text)
{
    const support::LogCapture log;
    const auto proxy = read(text);
    fuzz::require(log.count("S3cr3t") == 0, "a password in the log");
    if (proxy) {
        requireHidden(proxy->toString(Passwords::Hidden));
        requireHidden(proxy->shownHost());
    }
    requireHidden(vx::withoutProxyPassword(text));
}

void checkHiding(const std::wstring& before, const std::wstring& behind)
{
    checkProxyHiding(withSecret(before, behind));
    // These end the place where a password can stand.
    const auto authority = before.substr(0, before.find_first_of(L"/?#%"));
    const auto user = authority.substr(0, authority.find_first_of(L":@"));
    // Anywhere in it, unless all of it looks like the rest of a URL.
    const auto half = behind.begin() + static_cast<std::ptrdiff_t>(behind.size() / 2);
    if (!behind.starts_with(L"//"))
        checkProxyHiding(user + L':' + std::wstring(behind.begin(), half) + std::wstring(secret) +
                         std::wstring(half, behind.end()) + L'@' + user);
    for (const wchar_t* scheme : {L"", L"http://"}) {
        const std::wstring url = scheme + withSecret(authority, behind);
        requireHidden(vx::withoutPasswords(url));
        requireHidden(vx::withoutPasswords(buildDownloadUrl(url, L"hq:1")));
    }
}

std::wstring escaped(const std::wstring& url)
{
    const std::string_view plain = "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ-.~_%";
    const std::string bytes = vx::str::toUtf8(url);
    std::wstring result;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        char code[4];
        std::snprintf(code, sizeof code, "%%%02X", static_cast<unsigned char>(bytes[i]));
        const bool stays = plain.find(bytes[i]) != std::string_view::npos && bytes.compare(i, 3, "%20") != 0;
        result += stays ? std::wstring(1, bytes[i]) : std::wstring(code, code + 3);
    }
    return result;
}

void checkUrls(const std::wstring& url, const std::wstring& server)
{
    const std::wstring value = escaped(url);
    fuzz::require(utils::escapeUrl(url) == value, "escaped by both");
    const std::wstring built = buildDownloadUrl(url, server);
    const std::wstring slash = server.ends_with(L'/') ? L"" : L"/";
    const std::wstring scheme = server.find(L"://") == std::wstring::npos ? L"http://" : L"";
    const std::wstring byServer = scheme + server + slash + L"tarn/update?uri=" + value;
    fuzz::require(built == (server.empty() ? url : byServer), "the way by the server");
    fuzz::require(InternetProxy::isHQAddress(url, server) == (!server.empty() && url.find(server) == 0), "direct");
}

struct Network : IAutoProxyDriver {
    std::variant<DetectedProxy, DetectionFailure> detect(const std::wstring&) override { return answer; }
    DetectedProxy answer;
};

std::wstring lower(std::wstring text)
{
    for (wchar_t& c : text)
        c = c >= L'A' && c <= L'Z' ? c + (L'a' - L'A') : c;
    return text;
}

void checkBypass(const std::wstring& url, const std::wstring& bypass)
{
    std::wstring host = url;
    if (cut(host, L"://"); url.find(L"://") == std::wstring::npos)
        host = url;
    host = cut(host, L"/").first;
    const bool isNamed = host.find(L'.') != std::wstring::npos;
    const bool isPassedBy = lower(bypass).find(isNamed ? lower(host) : L"<local>") != std::wstring::npos;
    Network network;
    network.answer = {L"proxy", bypass};
    fuzz::require(detectProxy(network, url) == (isPassedBy ? L"" : L"proxy"), "passed by");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    auto text = fuzz::text(data, size);
    if (!text || text->find(secret) != std::wstring::npos)
        return 0;
    const std::wstring proxy = cut(*text, L"\n").first;
    const std::wstring url = cut(*text, L"\n").first;
    fuzz::require(read(proxy) == readByCutting(proxy), "read by both");
    checkHiding(proxy, url);
    checkUrls(url, *text);
    checkBypass(url, *text);
    return 0;
}
