#pragma once

#include <filesystem>

namespace devhost::host {

/// Where the product's logger, run by an administrator, puts the plug-in's log: tarnhd.log under the root
/// that the registry or %ProgramData% names. The file need not exist.
std::filesystem::path logLocation();

} // namespace devhost::host
