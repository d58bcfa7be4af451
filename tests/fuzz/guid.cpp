// A text is refused with the one error or read as a second, plainer reading reads it; and the GUID's own text has
// the one form and reads back as the same GUID.

#include "input.h"

#include <cwctype>
#include <regex>

using namespace vx::tarn::common;
using utils::Guid;

namespace {

/// Reads the fields one character at a time.
struct Reader {
    bool take(std::wstring_view anyOf)
    {
        const bool taken = at < text.size() && anyOf.find(text[at]) != std::wstring_view::npos;
        at += taken;
        return taken;
    }

    void dash() { failed = failed || !take(L"-"); }

    /// A number of at most `width` characters: white space first, then sign and 0x, both counted.
    std::uint32_t field(int width)
    {
        while (at < text.size() && std::iswspace(static_cast<wint_t>(text[at])))
            ++at;
        const bool negative = at < text.size() && text[at] == L'-';
        width -= take(L"+-");
        bool any = width > 0 && take(L"0");
        width -= any;
        if (any && width > 0)
            width -= take(L"xX");
        std::uint32_t value = 0;
        for (; width > 0 && take(L"0123456789ABCDEFabcdef"); --width, any = true) {
            const wchar_t c = text[at - 1];
            value = value * 16 + static_cast<std::uint32_t>(c <= L'9' ? c - L'0' : (c & 7) + 9);
        }
        failed = failed || !any;
        return negative ? 0 - value : value;
    }

    std::wstring text;
    std::size_t at = 0;
    bool failed = false;
};

std::optional<Guid> readPlainly(const std::wstring& text)
{
    Reader reader{text.substr(0, text.find(L'\0'))};
    Guid guid;
    guid.data1 = reader.field(8);
    reader.dash();
    guid.data2 = static_cast<std::uint16_t>(reader.field(4));
    reader.dash();
    guid.data3 = static_cast<std::uint16_t>(reader.field(4));
    for (std::size_t i = 0; i < 8; ++i) {
        if (i == 0 || i == 2)
            reader.dash();
        guid.data4[i] = static_cast<std::uint8_t>(reader.field(2));
    }
    return reader.failed ? std::nullopt : std::optional(guid);
}

const std::wregex form(L"[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}");

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto text = fuzz::text(data, size);
    if (!text)
        return 0;
    const auto guid = fuzz::guid(*text);
    fuzz::require(guid == readPlainly(*text), "the fields");
    if (guid) {
        const std::wstring written = utils::guidToString(*guid);
        fuzz::require(std::regex_match(written, form), "the text's form");
        fuzz::require(fuzz::guid(written) == guid, "round trip");
    }
    return 0;
}
