#include "logging-backend/location.h"

#include "logging-backend/configuration.h"

#include <windows.h>

namespace VxQrlLogging {

namespace {

constexpr const wchar_t* shellFolders = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

std::wstring expand(const wchar_t* text)
{
    const DWORD size = ExpandEnvironmentStringsW(text, nullptr, 0);
    if (size == 0)
        return {};
    std::wstring result(size, L'\0');
    const DWORD written = ExpandEnvironmentStringsW(text, result.data(), size);
    // Another thread may have changed the variable in between.
    if (written == 0 || written != size)
        return {};
    result.resize(written - 1);
    return result;
}

std::wstring configuredRoot(HKEY hive, const wchar_t* folder, const wchar_t* variable)
{
    std::wstring root = registryText(hive, loggingKey, KEY_QUERY_VALUE | KEY_WOW64_32KEY, L"RootPath");
    if (root.empty())
        root = registryText(hive, shellFolders, KEY_QUERY_VALUE, folder);
    if (root.empty())
        root = expand(variable);
    return root;
}

std::wstring rootOf(Location location)
{
    switch (location) {
    case Location::Machine: return configuredRoot(HKEY_LOCAL_MACHINE, L"Common AppData", L"%ProgramData%");
    case Location::User: return configuredRoot(HKEY_CURRENT_USER, L"Local AppData", L"%LOCALAPPDATA%");
    case Location::LowIntegrity: break;
    }
    return registryText(HKEY_CURRENT_USER, shellFolders, KEY_QUERY_VALUE, L"{A520A1A4-1780-4FF6-BD18-167343C5AF16}");
}

} // namespace

std::wstring makerFolder(Location location)
{
    return rootOf(location) + L"\\Vantorix";
}

std::wstring logFolder(const std::wstring& makerFolder, const std::wstring& name1)
{
    return makerFolder + L"\\Log\\" + name1;
}

} // namespace VxQrlLogging
