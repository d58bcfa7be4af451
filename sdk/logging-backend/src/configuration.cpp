#include "logging-backend/configuration.h"

#include <windows.h>

namespace VxQrlLogging {

namespace {

std::shared_ptr<HKEY__> own(HKEY key)
{
    return {key, RegCloseKey};
}

std::optional<unsigned long> readNumber(HKEY key, const wchar_t* value)
{
    DWORD number = 0;
    DWORD type = REG_NONE;
    DWORD size = sizeof number;
    const LSTATUS status = RegQueryValueExW(key, value, nullptr, &type, reinterpret_cast<BYTE*>(&number), &size);
    if (status == ERROR_SUCCESS && type == REG_DWORD && size == sizeof number)
        return number;
    return std::nullopt;
}

} // namespace

std::wstring registryText(HKEY__* hive, const wchar_t* keyName, unsigned long access, const wchar_t* value)
{
    HKEY opened = nullptr;
    if (RegOpenKeyExW(hive, keyName, 0, access, &opened) != ERROR_SUCCESS)
        return {};
    const auto key = own(opened);
    DWORD type = REG_NONE;
    DWORD size = 0;
    // Meant as it stands: only ERROR_MORE_DATA leads on, although the system answers a question for the
    // size with success. The installed base finds its files through the environment because of it.
    if (RegQueryValueExW(key.get(), value, nullptr, &type, nullptr, &size) != ERROR_MORE_DATA ||
        (type != REG_SZ && type != REG_EXPAND_SZ))
        return {};
    std::wstring text((size + sizeof(wchar_t) - 1) / sizeof(wchar_t), L'\0');
    if (RegQueryValueExW(key.get(), value, nullptr, &type, reinterpret_cast<BYTE*>(text.data()), &size) !=
        ERROR_SUCCESS)
        return {};
    text.resize(size / sizeof(wchar_t));
    if (text.ends_with(L'\0'))
        text.pop_back();
    return text;
}

Configuration::Configuration(const std::wstring& name1, const std::wstring& name2)
{
    const std::wstring all = loggingKey;
    const std::wstring program = all + L"\\" + name1;
    for (const std::wstring& name : {all, program, program + L"\\" + name2}) {
        HKEY key = nullptr;
        const LSTATUS status =
            RegOpenKeyExW(HKEY_LOCAL_MACHINE, name.c_str(), 0, KEY_QUERY_VALUE | KEY_WOW64_32KEY, &key);
        // Mostly nothing is configured: a key that is not there has none below it, and needs no more questions.
        if (status == ERROR_FILE_NOT_FOUND)
            break;
        m_keys.push_back(own(status == ERROR_SUCCESS ? key : nullptr));
    }
}

std::optional<unsigned long> Configuration::number(const wchar_t* value) const
{
    constexpr unsigned long handedOn = 0xFFFFFFFF;
    for (std::size_t i = m_keys.size(); i-- > 0;)
        if (const auto number = readNumber(m_keys[i].get(), value); number && (*number != handedOn || i == 0))
            return number;
    return std::nullopt;
}

} // namespace VxQrlLogging
