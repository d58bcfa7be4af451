#include "common/downloader/useragent.h"

#include "logging/logstream.h"
#include "vxtl/exception.h"
#include "vxtl/registry.h"

namespace vx::tarn::common {

namespace {

constexpr wchar_t defaultAgent[] = L"Wget/1.11.4 VantorixTarnpatch";
constexpr wchar_t productKey[] = L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantorix\\Unitide";

} // namespace

std::wstring userAgent(const registry::Registry& registry)
{
    try {
        const auto key = registry.openKey(productKey, registry::readAccess, registry::View::View32);
        return std::wstring(defaultAgent) + L" (" + key->getStringValue(L"Config") + L", " +
               key->getStringValue(L"Version") + L")";
    } catch (const std::exception& e) {
        logging::LogStream(logging::Level::Error) << "Failed to get user agent because of exception: " << What(e)
                                                  << ". Will be used default value: " << defaultAgent;
        return defaultAgent;
    }
}

} // namespace vx::tarn::common
