#pragma once

#include <optional>
#include <string>

namespace vx::scheduler {

/// Removes a file or a folder with everything below it; links are removed and not followed. Gives the system's error,
/// 0 for none, and nothing when there is nothing of the name. Stops at the first error.
std::optional<unsigned long> removeTree(const std::wstring& path);

} // namespace vx::scheduler
