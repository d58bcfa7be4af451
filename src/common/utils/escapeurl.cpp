#include "common/utils/escapeurl.h"

#include "vxtl/str.h"
#include "vxtl/win32exception.h"

#include <array>
#include <string_view>

namespace vx::tarn::common::utils {

namespace {

constexpr std::wstring_view digits = L"0123456789ABCDEF";

constexpr auto isPlain = [] {
    std::array<bool, 256> table{};
    for (const char c : std::string_view("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-.~_%"))
        table[static_cast<unsigned char>(c)] = true;
    return table;
}();

std::string toUtf8(const std::wstring& url)
{
    try {
        return str::toUtf8(url);
    } catch (const Win32Exception& e) {
        VX_THROW_WIN32_AS(L"vx::tarn::common::utils::escapeUrl", e.code());
    }
}

} // namespace

std::wstring escapeUrl(const std::wstring& url)
{
    const std::string bytes = toUtf8(url);
    // Room for the worst case: nothing grows on the way.
    std::wstring result(3 * bytes.size(), L'\0');
    wchar_t* to = result.data();
    for (const char* from = bytes.c_str(); from != bytes.c_str() + bytes.size(); ++from) {
        const auto byte = static_cast<unsigned char>(*from);
        // The text's closing zero ends the look ahead.
        if (isPlain[byte] && !(byte == '%' && from[1] == '2' && from[2] == '0')) {
            *to++ = byte;
            continue;
        }
        *to++ = L'%';
        *to++ = digits[byte >> 4];
        *to++ = digits[byte & 0xF];
    }
    result.resize(static_cast<std::size_t>(to - result.data()));
    return result;
}

} // namespace vx::tarn::common::utils
