#pragma once

#include <string>

namespace tools {

/// The text of docs/keys.md.
std::string keysPage();

} // namespace tools
