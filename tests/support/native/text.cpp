// Native twins of the text conversions: both narrow forms are UTF-8, wide text is UTF-32.

#include "logging/details/utf8.h"
#include "vxtl/str.h"
#include "vxtl/win32exception.h"

namespace {

constexpr unsigned long noUnicodeTranslation = 1113;

bool encode(std::string& target, std::wstring_view text)
{
    for (const wchar_t wide : text) {
        const auto c = static_cast<char32_t>(wide);
        if (c > 0x10FFFF || (c >= 0xD800 && c < 0xE000))
            return false;
        const int more = c < 0x80 ? 0 : c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
        static constexpr unsigned char lead[] = {0, 0xC0, 0xE0, 0xF0};
        target += static_cast<char>(lead[more] | (c >> (6 * more)));
        for (int i = more - 1; i >= 0; --i)
            target += static_cast<char>(0x80 | ((c >> (6 * i)) & 0x3F));
    }
    return true;
}

} // namespace

namespace vx::logging::details {

void appendUtf8(std::string& target, std::wstring_view text)
{
    std::string utf8;
    if (encode(utf8, text))
        target += utf8;
    else
        target.append("[UTF8_FAIL]").append(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t));
}

} // namespace vx::logging::details

namespace vx::str {

std::string toUtf8(std::wstring_view text)
{
    std::string result;
    if (!encode(result, text))
        VX_THROW_WIN32(noUnicodeTranslation);
    return result;
}

std::wstring fromUtf8(std::string_view text)
{
    std::wstring result;
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i++]);
        const int more = lead < 0x80 ? 0 : lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC2 ? 1 : -1;
        if (more < 0 || i + static_cast<std::size_t>(more) > text.size())
            VX_THROW_WIN32(noUnicodeTranslation);
        auto c = static_cast<char32_t>(more == 0 ? lead : lead & (0x3F >> more));
        for (int k = 0; k < more; ++k) {
            const auto next = static_cast<unsigned char>(text[i++]);
            if ((next & 0xC0) != 0x80)
                VX_THROW_WIN32(noUnicodeTranslation);
            c = (c << 6) | (next & 0x3F);
        }
        result += static_cast<wchar_t>(c);
    }
    return result;
}

std::string toMultibyte(std::wstring_view text)
{
    return toUtf8(text);
}

std::wstring toUnicode(std::string_view text)
{
    return fromUtf8(text);
}

} // namespace vx::str
