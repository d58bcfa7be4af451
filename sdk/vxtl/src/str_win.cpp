#include "vxtl/str.h"

#include "vxtl/win32exception.h"

#include <windows.h>

#include <type_traits>

namespace vx::str {

namespace {

constexpr std::size_t longestText = 0x7FFFFFFF;

// Nearly every text is ASCII, and copying that costs far less than the system's conversion, which is called twice.

/// Converts what is ASCII only; false, with `result` in any state, for another text.
template <typename Character, typename Result>
bool copyAscii(std::basic_string_view<Character> text, std::basic_string<Result>& result)
{
    std::make_unsigned_t<Character> bits = 0;
    result.resize(text.size());
    Result* to = result.data();
    for (const Character c : text) {
        bits |= static_cast<std::make_unsigned_t<Character>>(c);
        *to++ = static_cast<Result>(c);
    }
    return bits < 0x80;
}

/// Asks for the size and for the text. Empty when the system refuses either; its last error tells why.
template <typename Text, typename Call>
Text convertTwice(Call call)
{
    Text result(static_cast<std::size_t>(call(nullptr, 0)), 0);
    if (!result.empty())
        result.resize(static_cast<std::size_t>(call(result.data(), static_cast<int>(result.size()))));
    return result;
}

std::string narrow(UINT codePage, DWORD flags, std::wstring_view text)
{
    const int length = static_cast<int>(text.size());
    return convertTwice<std::string>([&](char* target, int room) {
        return WideCharToMultiByte(codePage, flags, text.data(), length, target, room, nullptr, nullptr);
    });
}

std::wstring widen(UINT codePage, DWORD flags, std::string_view text)
{
    const int length = static_cast<int>(text.size());
    return convertTwice<std::wstring>([&](wchar_t* target, int room) {
        return MultiByteToWideChar(codePage, flags, text.data(), length, target, room);
    });
}

} // namespace

// The system calls refuse an empty text, so it never reaches them.

std::string toMultibyte(std::wstring_view text)
{
    if (text.size() > longestText)
        VX_THROW(BaseException, L"Too long string");
    std::string result = narrow(CP_ACP, 0, text);
    if (result.empty() && !text.empty())
        VX_THROW_WIN32(GetLastError());
    return result;
}

std::wstring toUnicode(std::string_view text)
{
    if (text.size() > longestText)
        VX_THROW(BaseException, L"Too long string");
    std::wstring result = widen(CP_ACP, 0, text);
    if (result.empty() && !text.empty())
        VX_THROW_WIN32(GetLastError());
    return result;
}

std::string toUtf8(std::wstring_view text)
{
    if (text.size() > longestText)
        VX_THROW(BaseException, L"Too long string");
    std::string result;
    if (copyAscii(text, result))
        return result;
    result = narrow(CP_UTF8, WC_ERR_INVALID_CHARS, text);
    if (result.empty() && !text.empty())
        VX_THROW_WIN32(GetLastError());
    return result;
}

std::wstring fromUtf8(std::string_view text)
{
    if (text.size() > longestText)
        VX_THROW(BaseException, L"Too long string");
    std::wstring result;
    if (copyAscii(text, result))
        return result;
    result = widen(CP_UTF8, MB_ERR_INVALID_CHARS, text);
    if (result.empty() && !text.empty())
        VX_THROW_WIN32(GetLastError());
    return result;
}

std::string toUtf8Lossy(std::wstring_view text)
{
    if (text.size() > longestText)
        VX_THROW(BaseException, L"Too long string");
    std::string result;
    return copyAscii(text, result) ? result : narrow(CP_UTF8, 0, text);
}

std::wstring fromUtf8Lossy(std::string_view text)
{
    if (text.size() > longestText)
        VX_THROW(BaseException, L"Too long string");
    std::wstring result;
    return copyAscii(text, result) ? result : widen(CP_UTF8, 0, text);
}

} // namespace vx::str
