#pragma once

#include "reference/sources.h"

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace tools {

/// A page that is made of the code.
struct Page {
    const char* file; ///< from the project's folder
    std::function<std::string(const std::vector<Source>&)> text;
};

/// All of them, and the index last.
const std::vector<Page>& pages();

/// All names of the tables of objects and the registry, as the sources spell them.
std::set<std::string> describedNames();

} // namespace tools
