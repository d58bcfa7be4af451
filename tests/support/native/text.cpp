// Native twins of the text conversions: both narrow forms are UTF-8, wide text is UTF-32.

#include "logging/details/utf8.h"
#include "vxtl/str.h"
#include "vxtl/win32exception.h"

#include <filesystem>

namespace vx::str {

namespace {

/// Paths are where the library converts strictly and whatever the locale.
template <typename Result, typename Text>
Result convert(Result (std::filesystem::path::*form)() const, const Text& text)
{
    constexpr unsigned long noUnicodeTranslation = 1113;
    try {
        return (std::filesystem::path(text).*form)();
    } catch (const std::filesystem::filesystem_error&) {
        VX_THROW_WIN32(noUnicodeTranslation);
    }
}

} // namespace

std::string toUtf8(std::wstring_view text)
{
    return convert(&std::filesystem::path::string, std::u32string(text.begin(), text.end()));
}

std::wstring fromUtf8(std::string_view text)
{
    const std::u32string wide = convert(&std::filesystem::path::u32string, text);
    return {wide.begin(), wide.end()};
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
    target += vx::str::toUtf8(text);
}
