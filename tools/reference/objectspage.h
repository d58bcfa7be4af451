#pragma once

#include <string>
#include <vector>

namespace tools {

/// Something in the system that processes find by its name.
struct NamedObject {
    std::wstring name;
    const char* rest; ///< of the name, where it is made up; empty for none
    const char* kind;
    const char* reach; ///< who finds it
    const char* madeBy;
    const char* use;
};

std::vector<NamedObject> namedObjects();
std::string objectsPage();

} // namespace tools
