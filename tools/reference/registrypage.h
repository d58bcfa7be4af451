#pragma once

#include <string>
#include <vector>

namespace tools {

/// A value of the registry that the product reads or writes, or a key that says something by being there.
struct RegistryValue {
    std::wstring key;  ///< with the name of its root
    std::wstring name; ///< empty for the key itself
    const char* type;
    const char* writtenBy;
    const char* readBy;
    const char* meaning;
};

std::vector<RegistryValue> registryValues();
std::string registryPage();

} // namespace tools
