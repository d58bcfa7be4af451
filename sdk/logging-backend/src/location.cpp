#include "logging-backend/location.h"

#include "logging-backend/configuration.h"

#include <windows.h>

namespace VxQrlLogging {

namespace {

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
    std::wstring root = registryText(hive, loggingKey, KEY_QUERY_VALUE | KEY_WOW64_32KEY, rootPathValue);
    if (root.empty())
        root = registryText(hive, shellFolders, KEY_QUERY_VALUE, folder);
    if (root.empty())
        root = expand(variable);
    return root;
}

std::wstring rootOf(Location location)
{
    switch (location) {
    case Location::Machine: return configuredRoot(HKEY_LOCAL_MACHINE, machineFolderValue, L"%ProgramData%");
    case Location::User: return configuredRoot(HKEY_CURRENT_USER, userFolderValue, L"%LOCALAPPDATA%");
    case Location::LowIntegrity: break;
    }
    return registryText(HKEY_CURRENT_USER, shellFolders, KEY_QUERY_VALUE, lowIntegrityFolderValue);
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
