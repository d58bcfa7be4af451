#include "vxtl/registry.h"

#include <utility>

namespace vx::registry {

Registry::Registry(std::shared_ptr<details::RegistryImpl> impl) : m_impl(std::move(impl)) {}

std::shared_ptr<RegistryKey> Registry::openKey(const std::wstring& fullName, unsigned long access, View view) const
{
    return std::make_shared<RegistryKey>(m_impl->openKey(fullName, access, view));
}

std::shared_ptr<RegistryKey> Registry::createKey(
    const std::wstring& fullName, unsigned long access, unsigned long options, View view)
{
    return std::make_shared<RegistryKey>(m_impl->createKey(fullName, access, options, view));
}

void Registry::deleteKey(const std::wstring& fullName, View view)
{
    m_impl->deleteKey(fullName, view);
}

void Registry::deleteTree(const std::wstring& fullName)
{
    m_impl->deleteTree(fullName);
}

bool Registry::doesKeyExist(const std::wstring& fullName, View view) const
{
    return m_impl->doesKeyExist(fullName, view);
}

std::shared_ptr<RegistryKey> Registry::classesRoot() const
{
    return std::make_shared<RegistryKey>(m_impl->classesRoot());
}

std::shared_ptr<RegistryKey> Registry::currentConfig() const
{
    return std::make_shared<RegistryKey>(m_impl->currentConfig());
}

std::shared_ptr<RegistryKey> Registry::currentUser() const
{
    return std::make_shared<RegistryKey>(m_impl->currentUser());
}

std::shared_ptr<RegistryKey> Registry::localMachine() const
{
    return std::make_shared<RegistryKey>(m_impl->localMachine());
}

std::shared_ptr<RegistryKey> Registry::users() const
{
    return std::make_shared<RegistryKey>(m_impl->users());
}

} // namespace vx::registry
