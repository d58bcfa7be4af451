#pragma once

#include "vxtl/handle.h"

namespace vx::registry {

/// Closes with RegCloseKey, but for the predefined keys.
struct RegistryKeyCloser {
    void operator()(void* key) const noexcept;
};

/// A key that was not opened is null.
struct NoRegistryKey {
    bool operator()(void* key) const noexcept { return !key; }
};

/// A native key handle.
using RegistryKeyHandle = AutomaticHandle<void*, RegistryKeyCloser, NoRegistryKey>;

} // namespace vx::registry
