#include "host/loglocation.h"

#include <string>
#include <windows.h>

namespace devhost::host {

namespace {

constexpr auto loggingKey = L"SOFTWARE\\Vantorix\\QRL\\Logging";
constexpr auto shellFoldersKey = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

/// As the logger reads a text: the value itself is asked for only when the size query ends with
/// ERROR_MORE_DATA. A reader that took more would look in another folder than the logger writes to.
std::wstring readText(const wchar_t* key, REGSAM access, const wchar_t* value)
{
    HKEY handle = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, key, 0, access, &handle) != ERROR_SUCCESS)
        return {};
    DWORD type = 0;
    DWORD size = 0;
    std::wstring text;
    if (RegQueryValueExW(handle, value, nullptr, &type, nullptr, &size) == ERROR_MORE_DATA &&
        (type == REG_SZ || type == REG_EXPAND_SZ)) {
        text.resize(size / sizeof(wchar_t));
        if (RegQueryValueExW(handle, value, nullptr, &type, reinterpret_cast<BYTE*>(text.data()), &size) != 0)
            text.clear();
        if (text.ends_with(L'\0'))
            text.pop_back();
    }
    RegCloseKey(handle);
    return text;
}

std::wstring expand(const wchar_t* text)
{
    wchar_t buffer[MAX_PATH];
    const auto size = ExpandEnvironmentStringsW(text, buffer, MAX_PATH);
    return size > 0 && size <= MAX_PATH ? buffer : L"";
}

std::wstring root()
{
    auto text = readText(loggingKey, KEY_QUERY_VALUE | KEY_WOW64_32KEY, L"RootPath");
    if (text.empty())
        text = readText(shellFoldersKey, KEY_QUERY_VALUE, L"Common AppData");
    return text.empty() ? expand(L"%ProgramData%") : text;
}

} // namespace

std::filesystem::path logLocation()
{
    return std::filesystem::path(root()) / L"Vantorix\\Log\\tarn\\tarnhd.log";
}

} // namespace devhost::host
