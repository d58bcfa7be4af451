#include "common/downloader/httpheaders.h"

#include <algorithm>

namespace vx::tarn::common {

namespace {

constexpr std::wstring_view lineEnd = L"\r\n";
constexpr std::wstring_view separator = L": ";

// Names are ASCII by the protocol; the run-time's function would ask the locale.
wchar_t lowerCase(wchar_t c)
{
    return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
}

void addLine(HttpHeaders& headers, std::wstring_view line)
{
    const auto end = line.find(separator);
    if (end == std::wstring_view::npos)
        return;
    std::wstring name(line.substr(0, end));
    std::ranges::transform(name, name.begin(), lowerCase);
    headers.emplace(std::move(name), line.substr(end + separator.size()));
}

} // namespace

HttpHeaders parseHeaders(std::wstring_view text)
{
    HttpHeaders headers;
    for (;;) {
        const auto end = text.find(lineEnd);
        addLine(headers, text.substr(0, end));
        if (end == std::wstring_view::npos)
            return headers;
        text.remove_prefix(end + lineEnd.size());
    }
}

std::wstring headerText(const HttpHeaders& headers)
{
    std::wstring text;
    for (const auto& [name, value] : headers)
        text.append(name).append(separator).append(value).append(lineEnd);
    return text;
}

} // namespace vx::tarn::common
