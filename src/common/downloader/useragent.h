#pragma once

#include <string>

namespace vx::registry {
class Registry;
}

namespace vx::tarn::common {

/// How requests name this program: with the product's configuration and version when they stand in the registry.
/// Never fails for want of them.
std::wstring userAgent(const registry::Registry& registry);

} // namespace vx::tarn::common
