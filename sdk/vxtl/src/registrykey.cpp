#include "vxtl/registrykey.h"

#include <utility>

namespace vx::registry {

RegistryKey::RegistryKey(std::shared_ptr<details::RegistryKeyImpl> impl) : m_impl(std::move(impl)) {}

std::shared_ptr<RegistryKey> RegistryKey::openKey(const std::wstring& subkey, unsigned long access, View view) const
{
    return std::make_shared<RegistryKey>(m_impl->openKey(subkey, access, view));
}

std::shared_ptr<RegistryKey> RegistryKey::createKey(
    const std::wstring& subkey, unsigned long access, unsigned long options, View view)
{
    return std::make_shared<RegistryKey>(m_impl->createKey(subkey, access, options, view));
}

bool RegistryKey::isCreated() const
{
    return m_impl->isCreated();
}

bool RegistryKey::doesValueExist(const std::wstring& name) const
{
    return m_impl->doesValueExist(name);
}

bool RegistryKey::doesKeyExist(const std::wstring& subkey, View view) const
{
    return m_impl->doesKeyExist(subkey, view);
}

std::vector<std::wstring> RegistryKey::getKeys() const
{
    return m_impl->getKeys();
}

std::vector<std::wstring> RegistryKey::getValues() const
{
    return m_impl->getValues();
}

std::int32_t RegistryKey::getInt32Value(const std::wstring& name) const
{
    return m_impl->getInt32Value(name);
}

std::int64_t RegistryKey::getInt64Value(const std::wstring& name) const
{
    return m_impl->getInt64Value(name);
}

std::wstring RegistryKey::getStringValue(const std::wstring& name) const
{
    return m_impl->getStringValue(name);
}

std::vector<std::wstring> RegistryKey::getMultiStringValue(const std::wstring& name) const
{
    return m_impl->getMultiStringValue(name);
}

std::vector<std::uint8_t> RegistryKey::getBinaryValue(const std::wstring& name) const
{
    return m_impl->getBinaryValue(name);
}

void RegistryKey::setInt32Value(const std::wstring& name, std::int32_t value)
{
    m_impl->setInt32Value(name, value);
}

void RegistryKey::setInt64Value(const std::wstring& name, std::int64_t value)
{
    m_impl->setInt64Value(name, value);
}

void RegistryKey::setStringValue(const std::wstring& name, const std::wstring& text)
{
    m_impl->setStringValue(name, text);
}

void RegistryKey::setMultiStringValue(const std::wstring& name, const std::vector<std::wstring>& list)
{
    m_impl->setMultiStringValue(name, list);
}

void RegistryKey::setBinaryValue(const std::wstring& name, const std::vector<std::uint8_t>& bytes)
{
    m_impl->setBinaryValue(name, bytes);
}

void RegistryKey::deleteValue(const std::wstring& name)
{
    m_impl->deleteValue(name);
}

void RegistryKey::deleteKey(const std::wstring& subkey, View view)
{
    m_impl->deleteKey(subkey, view);
}

void RegistryKey::deleteTree(const std::wstring& subkey)
{
    m_impl->deleteTree(subkey);
}

} // namespace vx::registry
