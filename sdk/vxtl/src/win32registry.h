#pragma once

#include "vxtl/registryimpl.h"

namespace vx::registry::details {

/// The system's registry.
class Win32Registry : public RegistryImpl {
public:
    std::shared_ptr<RegistryKeyImpl> openKey(
        const std::wstring& fullName, unsigned long access, View view) const override;
    std::shared_ptr<RegistryKeyImpl> createKey(
        const std::wstring& fullName, unsigned long access, unsigned long options, View view) override;
    void deleteKey(const std::wstring& fullName, View view) override;
    void deleteTree(const std::wstring& fullName) override;
    bool doesKeyExist(const std::wstring& fullName, View view) const override;
    std::shared_ptr<RegistryKeyImpl> classesRoot() const override;
    std::shared_ptr<RegistryKeyImpl> currentConfig() const override;
    std::shared_ptr<RegistryKeyImpl> currentUser() const override;
    std::shared_ptr<RegistryKeyImpl> localMachine() const override;
    std::shared_ptr<RegistryKeyImpl> users() const override;
};

} // namespace vx::registry::details
