#include "win32registrykey.h"

#include "multistring.h"
#include "vxtl/win32exception.h"

#include <windows.h>

#include <shlwapi.h>

namespace vx::registry {

void RegistryKeyCloser::operator()(void* key) const noexcept
{
    // Closing a predefined key closes the root behind it, which the whole process shares. Their numbers alone are
    // negative.
    if (reinterpret_cast<LONG_PTR>(key) < 0)
        return;
    const LSTATUS status = RegCloseKey(static_cast<HKEY>(key));
    if (status != ERROR_SUCCESS)
        vx::details::logCloseFailure(key, static_cast<unsigned long>(status));
}

namespace details {

namespace {

HKEY native(const RegistryKeyHandle& key)
{
    return static_cast<HKEY>(key.get());
}

REGSAM flag(View view)
{
    switch (view) {
    case View::View32: return KEY_WOW64_32KEY;
    case View::View64: return KEY_WOW64_64KEY;
    case View::Default: break;
    }
    return 0;
}

void* checkedKey(void* key)
{
    if (!key)
        VX_THROW_AS(
            BaseException, L"vx::registry::details::Win32RegistryKey::Win32RegistryKey", L"Null registry key value");
    return key;
}

struct Names {
    DWORD count = 0;
    DWORD longest = 0;
};

/// Calls RegEnumKeyExW or RegEnumValueW for each index; gives the status that ended it.
template <typename Enumerate>
LSTATUS enumerate(const Names& names, std::vector<std::wstring>& result, Enumerate enumerateOne)
{
    result.reserve(names.count);
    std::wstring buffer(names.longest + 1, L'\0');
    for (DWORD index = 0; index < names.count; ++index) {
        DWORD length = static_cast<DWORD>(buffer.size());
        const LSTATUS status = enumerateOne(index, buffer.data(), &length);
        if (status != ERROR_SUCCESS)
            return status == ERROR_NO_MORE_ITEMS ? ERROR_SUCCESS : status;
        result.emplace_back(buffer.data(), length);
    }
    return ERROR_SUCCESS;
}

} // namespace

Win32RegistryKey::Win32RegistryKey(void* key, bool created) : m_key(checkedKey(key)), m_created(created) {}

std::shared_ptr<RegistryKeyImpl> Win32RegistryKey::openKey(
    const std::wstring& subkey, unsigned long access, View view) const
{
    HKEY key = nullptr;
    VX_CHECK_WIN32(RegOpenKeyExW(native(m_key), subkey.c_str(), 0, access | flag(view), &key));
    return std::make_shared<Win32RegistryKey>(key);
}

std::shared_ptr<RegistryKeyImpl> Win32RegistryKey::createKey(
    const std::wstring& subkey, unsigned long access, unsigned long options, View view)
{
    HKEY key = nullptr;
    DWORD disposition = 0;
    VX_CHECK_WIN32(RegCreateKeyExW(
        native(m_key), subkey.c_str(), 0, nullptr, options, access | flag(view), nullptr, &key, &disposition));
    return std::make_shared<Win32RegistryKey>(key, disposition == REG_CREATED_NEW_KEY);
}

bool Win32RegistryKey::doesValueExist(const std::wstring& name) const
{
    const LSTATUS status = RegQueryValueExW(native(m_key), name.c_str(), nullptr, nullptr, nullptr, nullptr);
    if (status != ERROR_FILE_NOT_FOUND)
        VX_CHECK_WIN32(status);
    return status == ERROR_SUCCESS;
}

bool Win32RegistryKey::doesKeyExist(const std::wstring& subkey, View view) const
{
    HKEY key = nullptr;
    const LSTATUS status = RegOpenKeyExW(native(m_key), subkey.c_str(), 0, READ_CONTROL | flag(view), &key);
    const RegistryKeyHandle owner(key);
    if (status != ERROR_FILE_NOT_FOUND)
        VX_CHECK_WIN32(status);
    return status == ERROR_SUCCESS;
}

std::vector<std::wstring> Win32RegistryKey::getKeys() const
{
    Names names;
    VX_CHECK_WIN32(RegQueryInfoKeyW(native(m_key), nullptr, nullptr, nullptr, &names.count, &names.longest, nullptr,
        nullptr, nullptr, nullptr, nullptr, nullptr));
    std::vector<std::wstring> result;
    VX_CHECK_WIN32(enumerate(names, result, [this](DWORD index, wchar_t* name, DWORD* length) {
        return RegEnumKeyExW(native(m_key), index, name, length, nullptr, nullptr, nullptr, nullptr);
    }));
    return result;
}

std::vector<std::wstring> Win32RegistryKey::getValues() const
{
    Names names;
    VX_CHECK_WIN32(RegQueryInfoKeyW(native(m_key), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &names.count,
        &names.longest, nullptr, nullptr, nullptr));
    std::vector<std::wstring> result;
    VX_CHECK_WIN32(enumerate(names, result, [this](DWORD index, wchar_t* name, DWORD* length) {
        return RegEnumValueW(native(m_key), index, name, length, nullptr, nullptr, nullptr, nullptr);
    }));
    return result;
}

std::int32_t Win32RegistryKey::getInt32Value(const std::wstring& name) const
{
    DWORD type = 0;
    DWORD size = 0;
    VX_CHECK_WIN32(query(name, type, size));
    if (type != REG_DWORD)
        VX_THROW(BaseException, L"Invalid type of registry value: REG_DWORD is expected");
    std::int32_t value = 0;
    if (size != sizeof(value))
        VX_THROW(BaseException,
            L"Invalid registry value size of REG_DWORD type: 4 bytes are expected, actual is " + std::to_wstring(size));
    VX_CHECK_WIN32(read(name, &value, size));
    return value;
}

std::int64_t Win32RegistryKey::getInt64Value(const std::wstring& name) const
{
    DWORD type = 0;
    DWORD size = 0;
    VX_CHECK_WIN32(query(name, type, size));
    // That the text names REG_DWORD here too looks like a mistake and is meant.
    if (type != REG_QWORD)
        VX_THROW(BaseException, L"Invalid type of registry value: REG_DWORD is expected");
    std::int64_t value = 0;
    if (size != sizeof(value))
        VX_THROW(BaseException,
            L"Invalid registry value size of REG_QWORD type: 8 bytes are expected, actual is " + std::to_wstring(size));
    VX_CHECK_WIN32(read(name, &value, size));
    return value;
}

std::wstring Win32RegistryKey::getStringValue(const std::wstring& name) const
{
    DWORD type = 0;
    DWORD size = 0;
    VX_CHECK_WIN32(query(name, type, size));
    if (type != REG_SZ && type != REG_EXPAND_SZ)
        VX_THROW(BaseException, L"Invalid type of registry value: REG_SZ or REG_EXPAND_SZ is expected");
    if (size == 0)
        return {};
    // Others write values of an odd size and without a terminator.
    std::wstring text((size + 1) / sizeof(wchar_t), L'\0');
    VX_CHECK_WIN32(read(name, text.data(), size));
    text.resize(size / sizeof(wchar_t));
    return text.substr(0, text.find(L'\0'));
}

std::vector<std::wstring> Win32RegistryKey::getMultiStringValue(const std::wstring& name) const
{
    DWORD type = 0;
    DWORD size = 0;
    VX_CHECK_WIN32(query(name, type, size));
    if (type != REG_MULTI_SZ)
        VX_THROW(BaseException, L"Invalid type of registry value: REG_MULTI_SZ is expected");
    if (size < 2)
        return {};
    std::wstring data((size + 1) / sizeof(wchar_t), L'\0');
    size = static_cast<DWORD>(data.size() * sizeof(wchar_t));
    VX_CHECK_WIN32(read(name, data.data(), size));
    data.resize((size + 1) / sizeof(wchar_t));
    return splitMultiString(data);
}

std::vector<std::uint8_t> Win32RegistryKey::getBinaryValue(const std::wstring& name) const
{
    DWORD type = 0;
    DWORD size = 0;
    VX_CHECK_WIN32(query(name, type, size));
    if (type != REG_BINARY)
        VX_THROW(BaseException, L"Invalid type of registry value: REG_BINARY is expected");
    std::vector<std::uint8_t> bytes(size);
    VX_CHECK_WIN32(read(name, bytes.data(), size));
    bytes.resize(size);
    return bytes;
}

void Win32RegistryKey::setInt32Value(const std::wstring& name, std::int32_t value)
{
    VX_CHECK_WIN32(write(name, REG_DWORD, &value, sizeof(value)));
}

void Win32RegistryKey::setInt64Value(const std::wstring& name, std::int64_t value)
{
    VX_CHECK_WIN32(write(name, REG_QWORD, &value, sizeof(value)));
}

void Win32RegistryKey::setStringValue(const std::wstring& name, const std::wstring& text)
{
    VX_CHECK_WIN32(write(name, REG_SZ, text.c_str(), (text.size() + 1) * sizeof(wchar_t)));
}

void Win32RegistryKey::setMultiStringValue(const std::wstring& name, const std::vector<std::wstring>& list)
{
    const std::wstring data = joinMultiString(list);
    VX_CHECK_WIN32(write(name, REG_MULTI_SZ, data.empty() ? nullptr : data.data(), data.size() * sizeof(wchar_t)));
}

void Win32RegistryKey::setBinaryValue(const std::wstring& name, const std::vector<std::uint8_t>& bytes)
{
    VX_CHECK_WIN32(write(name, REG_BINARY, bytes.data(), bytes.size()));
}

void Win32RegistryKey::deleteValue(const std::wstring& name)
{
    VX_CHECK_WIN32(RegDeleteValueW(native(m_key), name.c_str()));
}

void Win32RegistryKey::deleteKey(const std::wstring& subkey, View view)
{
    VX_CHECK_WIN32(RegDeleteKeyExW(native(m_key), subkey.c_str(), flag(view), 0));
}

void Win32RegistryKey::deleteTree(const std::wstring& subkey)
{
    VX_CHECK_WIN32(SHDeleteKeyW(native(m_key), subkey.c_str()));
}

long Win32RegistryKey::query(const std::wstring& name, unsigned long& type, unsigned long& size) const
{
    return RegQueryValueExW(native(m_key), name.c_str(), nullptr, &type, nullptr, &size);
}

long Win32RegistryKey::read(const std::wstring& name, void* data, unsigned long& size) const
{
    return RegQueryValueExW(native(m_key), name.c_str(), nullptr, nullptr, static_cast<BYTE*>(data), &size);
}

long Win32RegistryKey::write(const std::wstring& name, unsigned long type, const void* data, std::size_t size) const
{
    return RegSetValueExW(
        native(m_key), name.c_str(), 0, type, static_cast<const BYTE*>(data), static_cast<DWORD>(size));
}

} // namespace details

} // namespace vx::registry
