#pragma once

#include <string>

namespace tarnctl::bundle {

/// The product's values in the registry, a line each. What can't be read is said in its place.
std::string registryText();

} // namespace tarnctl::bundle
