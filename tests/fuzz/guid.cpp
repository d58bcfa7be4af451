// A text is refused with the one error or read as a second, plainer reading reads it; and the GUID's own text has
// the one form and reads back as the same GUID.

#include "common/guid.h"
#include "input.h"

#include <cwctype>
#include <stdexcept>

using namespace vx::tarn::common;
using utils::Guid;

namespace {

/// Reads the fields one character at a time.
class Reader {
public:
    explicit Reader(const std::wstring& text) : m_text(text.substr(0, text.find(L'\0'))) {}

    bool failed() const { return m_failed; }

    void dash() { m_failed = m_failed || !take(L"-"); }

    /// A number of at most `width` characters: white space first, then sign and 0x, both counted.
    std::uint32_t field(int width)
    {
        while (m_at < m_text.size() && std::iswspace(static_cast<wint_t>(m_text[m_at])))
            ++m_at;
        const bool negative = m_at < m_text.size() && m_text[m_at] == L'-';
        if (take(L"+-"))
            --width;
        bool any = false;
        if (width > 0 && take(L"0")) {
            any = true;
            if (--width > 0 && take(L"xX"))
                --width;
        }
        std::uint32_t value = 0;
        for (; width > 0 && take(L"0123456789ABCDEFabcdef"); --width, any = true) {
            const wchar_t c = m_text[m_at - 1];
            value = value * 16 + static_cast<std::uint32_t>(c <= L'9' ? c - L'0' : (c & 7) + 9);
        }
        m_failed = m_failed || !any;
        return negative ? 0 - value : value;
    }

private:
    bool take(std::wstring_view anyOf)
    {
        const bool taken = m_at < m_text.size() && anyOf.find(m_text[m_at]) != std::wstring_view::npos;
        m_at += taken;
        return taken;
    }

    std::wstring m_text;
    std::size_t m_at = 0;
    bool m_failed = false;
};

std::optional<Guid> readPlainly(const std::wstring& text)
{
    Reader reader(text);
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
    return reader.failed() ? std::nullopt : std::optional(guid);
}

void checkText(const std::wstring& text)
{
    fuzz::require(text.size() == 36, "the text's length");
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool dash = i == 8 || i == 13 || i == 18 || i == 23;
        const bool fits = dash ? text[i] == L'-' : std::wstring_view(L"0123456789ABCDEF").find(text[i]) < 16;
        fuzz::require(fits, "the text's form");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto text = fuzz::text(data, size);
    if (!text)
        return 0;
    const auto expected = readPlainly(*text);
    try {
        const Guid guid = utils::guidFromString(*text);
        fuzz::require(expected == guid, "the fields");
        checkText(utils::guidToString(guid));
        fuzz::require(utils::guidFromString(utils::guidToString(guid)) == guid, "round trip");
    } catch (const std::runtime_error& e) {
        fuzz::require(std::string_view(e.what()) == "Bad GUID format", "the error's text");
        fuzz::require(!expected, "a good text is read");
    }
    return 0;
}
