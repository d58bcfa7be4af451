#include "common/utils/folders.h"

#include "vxtl/exception.h"
#include "vxtl/registry.h"

namespace vx::tarn::common::utils {

std::wstring getInstallationPath(const std::shared_ptr<registry::Registry>& registry)
{
    if (!registry) {
        logging::LogStream(logging::Level::Error) << "Invalid registry argument.";
        return {};
    }
    try {
        return registry->openKey(L"HKEY_LOCAL_MACHINE\\Software\\Vantorix\\tarn")
            ->getStringValue(L"InstallationDirectory");
    } catch (const std::exception& e) {
        logging::LogStream(logging::Level::Error) << "Failed to get installation path. Exception caught: " << What(e);
        return {};
    }
}

} // namespace vx::tarn::common::utils
