#pragma once

#include "vxtl/registryimpl.h"
#include "vxtl/registrykey.h"

namespace vx::registry {

/// The registry by full key names: the long name of a root, a backslash, the way down. Any thread; holds
/// no state. Throws as RegistryKey does, and BaseException for an unknown root.
class Registry {
public:
    explicit Registry(std::shared_ptr<details::RegistryImpl> impl) : m_impl(std::move(impl)) {}

    /// The name of a root alone gives the root, whatever the access.
    std::shared_ptr<RegistryKey> openKey(
        const std::wstring& fullName, unsigned long access = readAccess, View view = View::Default) const
    {
        return std::make_shared<RegistryKey>(m_impl->openKey(fullName, access, view));
    }
    std::shared_ptr<RegistryKey> createKey(const std::wstring& fullName, unsigned long access = allAccess,
        unsigned long options = 0, View view = View::Default)
    {
        return std::make_shared<RegistryKey>(m_impl->createKey(fullName, access, options, view));
    }
    /// Both throw BaseException "Cannot delete root registry key" for the name of a root.
    void deleteKey(const std::wstring& fullName, View view = View::Default) { m_impl->deleteKey(fullName, view); }
    void deleteTree(const std::wstring& fullName) { m_impl->deleteTree(fullName); }
    bool doesKeyExist(const std::wstring& fullName, View view = View::Default) const
    {
        return m_impl->doesKeyExist(fullName, view);
    }

    std::shared_ptr<RegistryKey> classesRoot() const { return std::make_shared<RegistryKey>(m_impl->classesRoot()); }
    std::shared_ptr<RegistryKey> currentConfig() const
    {
        return std::make_shared<RegistryKey>(m_impl->currentConfig());
    }
    std::shared_ptr<RegistryKey> currentUser() const { return std::make_shared<RegistryKey>(m_impl->currentUser()); }
    std::shared_ptr<RegistryKey> localMachine() const { return std::make_shared<RegistryKey>(m_impl->localMachine()); }
    std::shared_ptr<RegistryKey> users() const { return std::make_shared<RegistryKey>(m_impl->users()); }

private:
    std::shared_ptr<details::RegistryImpl> m_impl;
};

/// The system's registry.
std::shared_ptr<Registry> createWin32Registry();

} // namespace vx::registry
