#include "common/downloader/useragent.h"

#include "common/utils/productplaces.h"
#include "logging/logstream.h"
#include "vxtl/exception.h"
#include "vxtl/registry.h"

namespace vx::tarn::common {

namespace {

constexpr wchar_t defaultAgent[] = L"Wget/1.11.4 VantorixTarnpatch";

} // namespace

std::wstring userAgent(const registry::Registry& registry)
{
    try {
        const auto key = registry.openKey(suiteKey, registry::readAccess, registry::View::View32);
        return std::wstring(defaultAgent) + L" (" + key->getStringValue(suiteConfiguration) + L", " +
               key->getStringValue(suiteVersion) + L")";
    } catch (const std::exception& e) {
        logging::LogStream(logging::Level::Error) << "Failed to get user agent because of exception: " << What(e)
                                                  << ". Will be used default value: " << defaultAgent;
        return defaultAgent;
    }
}

} // namespace vx::tarn::common
