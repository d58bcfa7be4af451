#include "vxtl/crypto.h"
#include "vxtl/str.h"
#include "vxtl/win32exception.h"
#include "winhashcontext.h"

#include <windows.h>

#include <wincrypt.h>

namespace vx::crypto {

std::vector<std::uint8_t> hash(std::span<const std::uint8_t> source)
{
    WinHashContext context(CALG_MD5);
    context.hashData(source.data(), source.size());
    return context.finalizeHash();
}

std::wstring toBase64String(std::span<const std::uint8_t> bytes)
{
    if (bytes.empty())
        return {};
    constexpr DWORD flags = CRYPT_STRING_BASE64 | CRYPT_STRING_NOCRLF;
    const auto size = static_cast<DWORD>(bytes.size());
    DWORD length = 0;
    if (!CryptBinaryToStringW(bytes.data(), size, flags, nullptr, &length))
        VX_THROW_WIN32(GetLastError());
    std::wstring text(length, L'\0');
    if (!CryptBinaryToStringW(bytes.data(), size, flags, text.data(), &length))
        VX_THROW_WIN32(GetLastError());
    // The first call counts the terminator, the second does not; some systems end the text with a line break.
    text.resize(length);
    text.erase(text.find_last_not_of(str::whiteSpace) + 1);
    return text;
}

} // namespace vx::crypto
