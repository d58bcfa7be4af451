#include "common/internetproxy/nointernetproxy.h"

#include "common/internetproxy/sessiondriver.h"
#include "logging/logstream.h"
#include "vxtl/credentials.h"

#include <utility>

namespace vx::tarn::common {

NoInternetProxy::NoInternetProxy(std::shared_ptr<ISessionDriver> driver, bool ignoreCertErrors)
    : InternetProxy(std::move(driver), ignoreCertErrors)
{}

void* NoInternetProxy::openInternetConnection(const std::wstring& userAgent, const std::wstring& url)
{
    void* const handle = m_driver->open(userAgent, std::nullopt);
    if (!handle) {
        logging::LogStream(logging::Level::Error)
            << "Failed to open the internet connection (UA: " << userAgent << ", url: " << withoutPasswords(url)
            << "). Last error code: " << m_driver->lastError();
        return nullptr;
    }
    applyCertificateSetting(handle);
    return handle;
}

} // namespace vx::tarn::common
