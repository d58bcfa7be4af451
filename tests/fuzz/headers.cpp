// Any header block gives the headers that a plain reading of its lines gives, and the same again from a request's text.

#include "common/downloader/httpheaders.h"
#include "input.h"

#include <cwctype>

using namespace vx::tarn::common;

namespace {

/// Character by character, every line's end told by the two before it.
HttpHeaders readPlainly(const std::wstring& text)
{
    HttpHeaders headers;
    std::wstring name, line;
    bool inValue = false;
    for (const wchar_t c : text + L"\r\n") {
        line += c;
        if (line.ends_with(L"\r\n")) {
            if (inValue)
                headers.insert({name, line.substr(0, line.size() - 2)});
            inValue = false;
            line.clear();
        } else if (!inValue && line.ends_with(L": ")) {
            name = line.substr(0, line.size() - 2);
            for (wchar_t& letter : name)
                letter = letter < 128 ? static_cast<wchar_t>(std::towlower(static_cast<wint_t>(letter))) : letter;
            inValue = true;
            line.clear();
        }
    }
    return headers;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto text = fuzz::text(data, size);
    if (!text)
        return 0;
    const HttpHeaders headers = parseHeaders(*text);
    fuzz::require(headers == readPlainly(*text), "the plain reading");
    fuzz::require(parseHeaders(L"HTTP/1.1 200 OK\r\n" + headerText(headers)) == headers, "round trip");
    return 0;
}
