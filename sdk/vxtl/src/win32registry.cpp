#include "win32registry.h"

#include "parsekeyname.h"
#include "vxtl/exception.h"
#include "vxtl/registry.h"
#include "win32registrykey.h"

#include <windows.h>

namespace vx::registry {

namespace details {

namespace {

std::shared_ptr<RegistryKeyImpl> rootKey(void* root)
{
    return std::make_shared<Win32RegistryKey>(root);
}

std::shared_ptr<RegistryKeyImpl> rootKey(const KeyName& name)
{
    // The system's predefined handles are sign-extended.
    return rootKey(reinterpret_cast<void*>(static_cast<LONG_PTR>(static_cast<LONG>(name.root))));
}

} // namespace

std::shared_ptr<RegistryKeyImpl> Win32Registry::openKey(
    const std::wstring& fullName, unsigned long access, View view) const
{
    const KeyName name = parseKeyName(fullName);
    const auto root = rootKey(name);
    return name.subkey.empty() ? root : root->openKey(name.subkey, access, view);
}

std::shared_ptr<RegistryKeyImpl> Win32Registry::createKey(
    const std::wstring& fullName, unsigned long access, unsigned long options, View view)
{
    const KeyName name = parseKeyName(fullName);
    const auto root = rootKey(name);
    return name.subkey.empty() ? root : root->createKey(name.subkey, access, options, view);
}

void Win32Registry::deleteKey(const std::wstring& fullName, View view)
{
    const KeyName name = parseKeyName(fullName);
    if (name.subkey.empty())
        VX_THROW(BaseException, L"Cannot delete root registry key");
    rootKey(name)->deleteKey(name.subkey, view);
}

void Win32Registry::deleteTree(const std::wstring& fullName)
{
    const KeyName name = parseKeyName(fullName);
    if (name.subkey.empty())
        VX_THROW(BaseException, L"Cannot delete root registry key");
    rootKey(name)->deleteTree(name.subkey);
}

bool Win32Registry::doesKeyExist(const std::wstring& fullName, View view) const
{
    const KeyName name = parseKeyName(fullName);
    return name.subkey.empty() || rootKey(name)->doesKeyExist(name.subkey, view);
}

std::shared_ptr<RegistryKeyImpl> Win32Registry::classesRoot() const
{
    return rootKey(HKEY_CLASSES_ROOT);
}

std::shared_ptr<RegistryKeyImpl> Win32Registry::currentConfig() const
{
    return rootKey(HKEY_CURRENT_CONFIG);
}

std::shared_ptr<RegistryKeyImpl> Win32Registry::currentUser() const
{
    return rootKey(HKEY_CURRENT_USER);
}

std::shared_ptr<RegistryKeyImpl> Win32Registry::localMachine() const
{
    return rootKey(HKEY_LOCAL_MACHINE);
}

std::shared_ptr<RegistryKeyImpl> Win32Registry::users() const
{
    return rootKey(HKEY_USERS);
}

} // namespace details

std::shared_ptr<Registry> createWin32Registry()
{
    return std::make_shared<Registry>(std::make_shared<details::Win32Registry>());
}

} // namespace vx::registry
