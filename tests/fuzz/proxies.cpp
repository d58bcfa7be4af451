// A proxy's text and a URL, a line each. A proxy is read or refused for its port's number; an escaped URL has nothing
// that a query would take for its own. A password does not show in what a log may hold, whatever stands around it.

#include "common/internetproxy/downloadurl.h"
#include "common/internetproxy/proxyinfo.h"
#include "common/utils/escapeurl.h"
#include "input.h"
#include "support/logcapture.h"
#include "vxtl/credentials.h"

using namespace vx::tarn::common;
using Passwords = ProxyInfo::Passwords;

namespace {

constexpr std::wstring_view secret = L"S3cr3t";
constexpr auto plain = L"0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ-.~_%";

/// Takes the first line off.
std::wstring cutLine(std::wstring& rest)
{
    const auto end = rest.find(L'\n');
    const std::wstring line = rest.substr(0, end);
    rest = end == std::wstring::npos ? L"" : rest.substr(end + 1);
    return line;
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

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    auto text = fuzz::text(data, size);
    if (!text || text->find(secret) != std::wstring::npos)
        return 0;
    const std::wstring proxy = cutLine(*text);
    const std::wstring url = cutLine(*text);
    checkHiding(proxy, url);
    fuzz::require(utils::escapeUrl(url).find_first_not_of(plain) == std::wstring::npos, "escaped");
    return 0;
}
