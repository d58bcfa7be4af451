#include "vxtl/credentials.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>
#include <vector>

namespace vx {

namespace {

constexpr auto npos = std::wstring_view::npos;
constexpr std::wstring_view schemeEnd = L"://";
constexpr std::wstring_view hiddenPassword = L"<password>";

std::optional<wchar_t> hexDigit(wchar_t c)
{
    if (c >= L'0' && c <= L'9')
        return static_cast<wchar_t>(c - L'0');
    const auto letter = static_cast<wchar_t>(c | 0x20);
    if (letter >= L'a' && letter <= L'f')
        return static_cast<wchar_t>(letter - L'a' + 10);
    return std::nullopt;
}

/// A URL with its percent codes read, and where each of its characters begins in the text as it was.
struct PlainUrl {
    std::wstring text;
    std::vector<std::size_t> places; ///< one more than characters: the end
};

PlainUrl decode(std::wstring_view url)
{
    PlainUrl result;
    for (std::size_t i = 0; i < url.size(); ++i) {
        result.places.push_back(i);
        const bool code = url[i] == L'%' && url.size() - i > 2;
        const auto high = code ? hexDigit(url[i + 1]) : std::nullopt;
        const auto low = code ? hexDigit(url[i + 2]) : std::nullopt;
        result.text += high && low ? static_cast<wchar_t>(*high * 16 + *low) : url[i];
        if (high && low)
            i += 2;
    }
    result.places.push_back(url.size());
    return result;
}

/// Behind a scheme, or where the value of a parameter begins, which may be a URL without one.
std::size_t nextAuthority(std::wstring_view url, std::size_t from)
{
    const auto scheme = url.find(schemeEnd, from);
    const auto value = url.find(L'=', from);
    if (scheme == value)
        return npos;
    return scheme < value ? scheme + schemeEnd.size() : value + 1;
}

/// What has no scheme begins with its authority, whatever stands further on.
std::size_t firstAuthority(std::wstring_view url)
{
    const auto separator = url.find(schemeEnd);
    return separator != npos && url.find_first_of(L":@/?#") == separator ? separator + schemeEnd.size() : 0;
}

/// First character of the password and the one behind it; the authority's place twice where there is none.
std::pair<std::size_t, std::size_t> findPassword(std::wstring_view url, std::size_t authority)
{
    const auto end = std::min(url.find_first_of(L"/?#", authority), url.size());
    const std::pair none{authority, authority};
    const auto colon = url.find(L':', authority);
    if (colon >= end)
        return none;
    auto at = url.rfind(L'@', end);
    const auto host = at == npos || at < authority ? authority : at + 1;
    // Behind the host's colon there is a port. Anything else may be a password with a slash in it.
    const auto portColon = url.find(L':', host);
    if (portColon < end && url.find_first_not_of(L"0123456789", portColon + 1) < end)
        at = url.rfind(L'@');
    return at == npos || at < colon ? none : std::pair{colon + 1, at};
}

bool sameIgnoringCase(std::wstring_view left, std::wstring_view right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), [](wchar_t a, wchar_t b) {
        const auto lower = [](wchar_t c) { return c >= L'A' && c <= L'Z' ? c | 0x20 : c; };
        return lower(a) == lower(b);
    });
}

bool isSecret(std::wstring_view headerName)
{
    constexpr std::array<std::wstring_view, 3> names{L"authorization", L"proxy-authorization", L"cookie"};
    return std::any_of(
        names.begin(), names.end(), [&](std::wstring_view name) { return sameIgnoringCase(name, headerName); });
}

} // namespace

std::wstring withoutPasswords(std::wstring_view url)
{
    const PlainUrl plain = decode(url);
    std::wstring result;
    std::size_t shown = 0;
    for (auto authority = firstAuthority(plain.text); authority != npos;) {
        const auto [begin, end] = findPassword(plain.text, authority);
        if (begin < end) {
            result += url.substr(shown, plain.places[begin] - shown);
            result += hiddenPassword;
            shown = plain.places[end];
        }
        authority = nextAuthority(plain.text, end);
    }
    return result += url.substr(shown);
}

std::wstring withoutProxyPassword(std::wstring_view text)
{
    const auto colon = text.find(L':', firstAuthority(text));
    const auto at = text.rfind(L'@');
    if (at == npos || colon >= at)
        return withoutPasswords(text);
    std::wstring result(text.substr(0, colon + 1));
    result += hiddenPassword;
    return withoutPasswords(result += text.substr(at));
}

std::string withoutProxyPassword(std::string_view text)
{
    // Only ASCII is looked for, so that a byte may stand for a character, and what is no UTF-8 stays as it is.
    std::wstring bytes;
    for (const unsigned char byte : text)
        bytes += byte;
    const std::wstring shown = withoutProxyPassword(bytes);
    return {shown.begin(), shown.end()};
}

nlohmann::json withoutProxyPasswords(nlohmann::json value)
{
    if (auto* const text = value.get_ptr<nlohmann::json::string_t*>())
        *text = withoutProxyPassword(*text);
    if (value.is_structured())
        for (auto& element : value)
            element = withoutProxyPasswords(std::move(element));
    return value;
}

std::wstring withoutCredentials(std::wstring_view headers)
{
    std::wstring result;
    bool secret = false;
    while (!headers.empty()) {
        const auto line = headers.substr(0, headers.find_first_of(L"\r\n"));
        // A line that begins with a blank goes on with the value before it.
        const bool continues = line.starts_with(L' ') || line.starts_with(L'\t');
        const auto name = continues ? std::wstring_view() : line.substr(0, line.find(L':'));
        secret = continues ? secret : isSecret(name);
        const std::size_t value = std::min(name.size() + (continues ? 0 : 1), line.size());
        if (secret)
            (result += name) += L": <hidden>";
        else
            (result += line.substr(0, value)) += withoutPasswords(line.substr(value));
        headers.remove_prefix(line.size());
        const auto lineEnd = std::min(headers.find_first_not_of(L"\r\n"), headers.size());
        result += headers.substr(0, lineEnd);
        headers.remove_prefix(lineEnd);
    }
    return result;
}

} // namespace vx
