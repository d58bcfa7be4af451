#include "configuration.h"

#include <memory>
#include <type_traits>
#include <windows.h>

namespace VxQrlLogging {

namespace {

constexpr unsigned long absent = 0xFFFFFFFF;

struct KeyCloser {
    void operator()(HKEY key) const noexcept { RegCloseKey(key); }
};
using Key = std::unique_ptr<std::remove_pointer_t<HKEY>, KeyCloser>;

Key openKey(HKEY hive, const wchar_t* name, REGSAM access)
{
    HKEY key = nullptr;
    return Key(RegOpenKeyExW(hive, name, 0, access, &key) == ERROR_SUCCESS ? key : nullptr);
}

unsigned long readNumber(const wchar_t* keyName, const wchar_t* value, unsigned long fallback)
{
    const Key key = openKey(HKEY_LOCAL_MACHINE, keyName, KEY_QUERY_VALUE | KEY_WOW64_32KEY);
    if (!key)
        return fallback;
    DWORD number = 0;
    DWORD type = REG_NONE;
    DWORD size = sizeof number;
    const LSTATUS status = RegQueryValueExW(key.get(), value, nullptr, &type, reinterpret_cast<BYTE*>(&number), &size);
    return status == ERROR_SUCCESS && type == REG_DWORD && size == sizeof number ? number : fallback;
}

} // namespace

std::wstring registryText(HKEY__* hive, const wchar_t* keyName, unsigned long access, const wchar_t* value)
{
    const Key key = openKey(hive, keyName, access);
    if (!key)
        return {};
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
    : m_fileKey(std::wstring(loggingKey) + L"\\" + name1 + L"\\" + name2),
      m_programKey(std::wstring(loggingKey) + L"\\" + name1)
{}

unsigned long Configuration::number(const wchar_t* value, unsigned long fallback) const
{
    for (const std::wstring* key : {&m_fileKey, &m_programKey})
        if (const unsigned long number = readNumber(key->c_str(), value, absent); number != absent)
            return number;
    return readNumber(loggingKey, value, fallback);
}

} // namespace VxQrlLogging
