#pragma once

#include "vxtl/registryimpl.h"
#include "vxtl/registrykey.h"

namespace vx::registry {

/// The registry by full key names: the long name of a root, a backslash, the way down. Any thread; holds
/// no state. Throws as RegistryKey does, and BaseException for an unknown root.
class Registry {
public:
    explicit Registry(std::shared_ptr<details::RegistryImpl> impl);

    /// The name of a root alone gives the root, whatever the access.
    std::shared_ptr<RegistryKey> openKey(
        const std::wstring& fullName, unsigned long access = readAccess, View view = View::Default) const;
    std::shared_ptr<RegistryKey> createKey(const std::wstring& fullName, unsigned long access = allAccess,
        unsigned long options = 0, View view = View::Default);
    /// Both throw BaseException "Cannot delete root registry key" for the name of a root.
    void deleteKey(const std::wstring& fullName, View view = View::Default);
    void deleteTree(const std::wstring& fullName);
    bool doesKeyExist(const std::wstring& fullName, View view = View::Default) const;

    std::shared_ptr<RegistryKey> classesRoot() const;
    std::shared_ptr<RegistryKey> currentConfig() const;
    std::shared_ptr<RegistryKey> currentUser() const;
    std::shared_ptr<RegistryKey> localMachine() const;
    std::shared_ptr<RegistryKey> users() const;

private:
    std::shared_ptr<details::RegistryImpl> m_impl;
};

/// The system's registry.
std::shared_ptr<Registry> createWin32Registry();

} // namespace vx::registry
