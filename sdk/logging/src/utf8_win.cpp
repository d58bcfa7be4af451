#include "logging/details/utf8.h"

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

} // namespace vx::logging::details
