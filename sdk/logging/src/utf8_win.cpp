#include "logging/details/utf8.h"

#include "logging/details/lasterror.h"

#include <windows.h>

namespace vx::logging::details {

void appendUtf8(std::string& target, std::wstring_view text)
{
    if (text.empty())
        return;
    const int length = static_cast<int>(text.size());
    const std::size_t before = target.size();
    const DWORD lastError = GetLastError();
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    if (bytes > 0) {
        target.resize(before + static_cast<std::size_t>(bytes));
        WideCharToMultiByte(CP_UTF8, 0, text.data(), length, target.data() + before, bytes, nullptr, nullptr);
    } else {
        target += "[UTF8_FAIL]";
        target.append(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t));
    }
    SetLastError(lastError);
}

// The JSON library quotes UTF-8, while the system's texts are in the code page, in which hardly any text beyond ASCII
// is valid UTF-8.
void appendForeign(std::string& target, std::string_view text)
{
    const LastErrorKeeper keeper;
    const int length = static_cast<int>(text.size());
    if (MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), length, nullptr, 0) > 0) {
        target += text;
        return;
    }
    // In no code page a text has more units than bytes.
    std::wstring wide(text.size(), L'\0');
    const int units = MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), length);
    wide.resize(static_cast<std::size_t>(units));
    appendUtf8(target, wide);
}

} // namespace vx::logging::details
