#pragma once

#include "vxtl/registrykeyimpl.h"

namespace vx::registry {

/// An open registry key. One thread at a time. Except where a boolean is the answer, a failing system
/// call throws Win32Exception with its status: a missing key or value with 2, access denied with 5.
class RegistryKey {
public:
    explicit RegistryKey(std::shared_ptr<details::RegistryKeyImpl> impl);

    std::shared_ptr<RegistryKey> openKey(
        const std::wstring& subkey, unsigned long access = readAccess, View view = View::Default) const;
    /// Opens the key, or makes it with all keys above it. `options` are the system's, 1 is volatile.
    std::shared_ptr<RegistryKey> createKey(const std::wstring& subkey, unsigned long access = allAccess,
        unsigned long options = 0, View view = View::Default);
    /// Whether the call that gave this key made it.
    bool isCreated() const;
    /// Throw Win32Exception when the answer can't be had.
    bool doesValueExist(const std::wstring& name) const;
    bool doesKeyExist(const std::wstring& subkey, View view = View::Default) const;
    std::vector<std::wstring> getKeys() const;
    std::vector<std::wstring> getValues() const;

    /// A value of another type, or a number of another size, throws BaseException.
    std::int32_t getInt32Value(const std::wstring& name) const;
    std::int64_t getInt64Value(const std::wstring& name) const;
    /// Up to the first NUL; variables are not expanded.
    std::wstring getStringValue(const std::wstring& name) const;
    /// Without the empty strings, at most two, at the end.
    std::vector<std::wstring> getMultiStringValue(const std::wstring& name) const;
    std::vector<std::uint8_t> getBinaryValue(const std::wstring& name) const;

    void setInt32Value(const std::wstring& name, std::int32_t value);
    void setInt64Value(const std::wstring& name, std::int64_t value);
    void setStringValue(const std::wstring& name, const std::wstring& text);
    void setMultiStringValue(const std::wstring& name, const std::vector<std::wstring>& list);
    void setBinaryValue(const std::wstring& name, const std::vector<std::uint8_t>& bytes);

    void deleteValue(const std::wstring& name);
    /// The key may have no keys below it.
    void deleteKey(const std::wstring& subkey, View view = View::Default);
    /// Deletes the key with all below it, in the default view.
    void deleteTree(const std::wstring& subkey);

private:
    std::shared_ptr<details::RegistryKeyImpl> m_impl;
};

} // namespace vx::registry
