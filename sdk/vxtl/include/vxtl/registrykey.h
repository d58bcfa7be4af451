#pragma once

#include "vxtl/registrykeyimpl.h"

namespace vx::registry {

/// An open registry key. One thread at a time. Except where a boolean is the answer, a failing system
/// call throws Win32Exception with its status: a missing key or value with 2, access denied with 5.
class RegistryKey {
public:
    explicit RegistryKey(std::shared_ptr<details::RegistryKeyImpl> impl) : m_impl(std::move(impl)) {}

    std::shared_ptr<RegistryKey> openKey(
        const std::wstring& subkey, unsigned long access = readAccess, View view = View::Default) const
    {
        return std::make_shared<RegistryKey>(m_impl->openKey(subkey, access, view));
    }
    /// Opens the key, or makes it with all keys above it. `options` are the system's, 1 is volatile.
    std::shared_ptr<RegistryKey> createKey(const std::wstring& subkey, unsigned long access = allAccess,
        unsigned long options = 0, View view = View::Default)
    {
        return std::make_shared<RegistryKey>(m_impl->createKey(subkey, access, options, view));
    }
    /// Whether the call that gave this key made it.
    bool isCreated() const { return m_impl->isCreated(); }
    /// Throw Win32Exception when the answer can't be had.
    bool doesValueExist(const std::wstring& name) const { return m_impl->doesValueExist(name); }
    bool doesKeyExist(const std::wstring& subkey, View view = View::Default) const
    {
        return m_impl->doesKeyExist(subkey, view);
    }
    std::vector<std::wstring> getKeys() const { return m_impl->getKeys(); }
    std::vector<std::wstring> getValues() const { return m_impl->getValues(); }

    /// A value of another type, or a number of another size, throws BaseException.
    std::int32_t getInt32Value(const std::wstring& name) const { return m_impl->getInt32Value(name); }
    std::int64_t getInt64Value(const std::wstring& name) const { return m_impl->getInt64Value(name); }
    /// Up to the first NUL; variables are not expanded.
    std::wstring getStringValue(const std::wstring& name) const { return m_impl->getStringValue(name); }
    /// Without the empty strings, at most two, at the end.
    std::vector<std::wstring> getMultiStringValue(const std::wstring& name) const
    {
        return m_impl->getMultiStringValue(name);
    }
    std::vector<std::uint8_t> getBinaryValue(const std::wstring& name) const { return m_impl->getBinaryValue(name); }

    void setInt32Value(const std::wstring& name, std::int32_t value) { m_impl->setInt32Value(name, value); }
    void setInt64Value(const std::wstring& name, std::int64_t value) { m_impl->setInt64Value(name, value); }
    void setStringValue(const std::wstring& name, const std::wstring& text) { m_impl->setStringValue(name, text); }
    void setMultiStringValue(const std::wstring& name, const std::vector<std::wstring>& list)
    {
        m_impl->setMultiStringValue(name, list);
    }
    void setBinaryValue(const std::wstring& name, const std::vector<std::uint8_t>& bytes)
    {
        m_impl->setBinaryValue(name, bytes);
    }

    void deleteValue(const std::wstring& name) { m_impl->deleteValue(name); }
    /// The key may have no keys below it.
    void deleteKey(const std::wstring& subkey, View view = View::Default) { m_impl->deleteKey(subkey, view); }
    /// Deletes the key with all below it, in the default view.
    void deleteTree(const std::wstring& subkey) { m_impl->deleteTree(subkey); }

private:
    std::shared_ptr<details::RegistryKeyImpl> m_impl;
};

} // namespace vx::registry
