#pragma once

namespace vx::process::detail {

/// Whether the local Administrators group is among the token's groups, whatever its attributes there, so
/// also when it only denies. Throws Win32Exception.
bool hasEffectiveAdminRights(void* token);

} // namespace vx::process::detail
