#pragma once

#include <memory>
#include <string>

namespace vx::registry {
class Registry;
}

namespace vx::tarn::common::utils {

/// The system's own folder. Empty after a failure, which is logged.
std::wstring getSystemFolder();

/// Where the product is installed, from the registry. Empty after a failure, which is logged, and for a
/// null registry.
std::wstring getInstallationPath(const std::shared_ptr<registry::Registry>& registry);

} // namespace vx::tarn::common::utils
