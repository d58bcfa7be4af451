// Native twins of the text conversions: both narrow forms are UTF-8, wide text is UTF-32.

#include "logging/details/utf8.h"
#include "vxtl/str.h"
#include "vxtl/win32exception.h"

#include <algorithm>
#include <filesystem>

namespace vx::str {

namespace {

constexpr unsigned long noUnicodeTranslation = 1113;

constexpr bool isNoCharacter(char32_t c)
{
    return c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF);
}

/// Paths are where the library converts strictly, halves of pairs aside, and whatever the locale.
template <typename Conversion>
auto guarded(Conversion convert)
{
    try {
        return convert();
    } catch (const std::filesystem::filesystem_error&) {
        VX_THROW_WIN32(noUnicodeTranslation);
    }
}

} // namespace

std::string toUtf8(std::wstring_view text)
{
    if (std::any_of(text.begin(), text.end(), isNoCharacter))
        VX_THROW_WIN32(noUnicodeTranslation);
    return guarded([&] { return std::filesystem::path(std::u32string(text.begin(), text.end())).string(); });
}

std::wstring fromUtf8(std::string_view text)
{
    const std::u32string wide = guarded([&] { return std::filesystem::path(text).u32string(); });
    return {wide.begin(), wide.end()};
}

std::string toUtf8Lossy(std::wstring_view text)
{
    std::wstring valid(text);
    std::replace_if(valid.begin(), valid.end(), isNoCharacter, L'\xFFFD');
    return toUtf8(valid);
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

void vx::logging::details::appendUtf8(std::string& target, std::wstring_view text)
{
    target += vx::str::toUtf8Lossy(text);
}

void vx::logging::details::appendForeign(std::string& target, std::string_view text)
{
    target += text;
}
