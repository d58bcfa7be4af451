#pragma once

#include "vxtl/registrykeyimpl.h"

namespace vx::registry::details {

/// What stands behind a Registry: the system's registry, or another store. Any thread. Registry tells
/// what the operations promise.
class RegistryImpl {
public:
    virtual ~RegistryImpl() = default;
    virtual std::shared_ptr<RegistryKeyImpl> openKey(
        const std::wstring& fullName, unsigned long access, View view) const = 0;
    virtual std::shared_ptr<RegistryKeyImpl> createKey(
        const std::wstring& fullName, unsigned long access, unsigned long options, View view) = 0;
    virtual void deleteKey(const std::wstring& fullName, View view) = 0;
    virtual void deleteTree(const std::wstring& fullName) = 0;
    virtual bool doesKeyExist(const std::wstring& fullName, View view) const = 0;
    virtual std::shared_ptr<RegistryKeyImpl> classesRoot() const = 0;
    virtual std::shared_ptr<RegistryKeyImpl> currentConfig() const = 0;
    virtual std::shared_ptr<RegistryKeyImpl> currentUser() const = 0;
    virtual std::shared_ptr<RegistryKeyImpl> localMachine() const = 0;
    virtual std::shared_ptr<RegistryKeyImpl> users() const = 0;
};

} // namespace vx::registry::details
