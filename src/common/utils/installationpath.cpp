#include "common/utils/folders.h"

#include "common/utils/productplaces.h"
#include "vxtl/guarded.h"
#include "vxtl/registry.h"

namespace vx::tarn::common::utils {

std::wstring getInstallationPath(const std::shared_ptr<registry::Registry>& registry)
{
    if (!registry) {
        logging::LogStream(logging::Level::Error) << "Invalid registry argument.";
        return {};
    }
    std::wstring path;
    guarded("Failed to get installation path. Exception caught: ",
        [&] { path = registry->openKey(installationKey)->getStringValue(installationDirectory); });
    return path;
}

} // namespace vx::tarn::common::utils
