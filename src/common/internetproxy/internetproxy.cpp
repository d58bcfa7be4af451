#include "common/internetproxy/internetproxy.h"

#include "common/internetproxy/sessiondriver.h"
#include "logging/logstream.h"
#include "vxtl/credentials.h"

#include <cstdint>
#include <utility>

namespace vx::tarn::common {

namespace {

using logging::Level;
using logging::LogStream;

// Revocation that can't be checked, unknown authorities, wrong usage, names and dates that don't fit, weak signatures.
constexpr unsigned long ignoredErrors = 0x13380;

bool isHandle(void* handle)
{
    return handle && reinterpret_cast<std::intptr_t>(handle) != -1;
}

} // namespace

InternetProxy::InternetProxy(std::shared_ptr<ISessionDriver> driver, bool ignoreCertErrors)
    : m_driver(std::move(driver)), m_ignoreCertErrors(ignoreCertErrors)
{}

InternetProxy::~InternetProxy() = default;

bool InternetProxy::ignoreCertificateErrors(void* handle)
{
    if (!isHandle(handle)) {
        LogStream(Level::Error) << "Failed to set ingoring certificate errors. Invalid internet handle.";
        return false;
    }
    const auto flags = m_driver->securityFlags(handle);
    if (!flags) {
        LogStream(Level::Error) << "Failed to request internet query option. Last error: " << m_driver->lastError();
        return false;
    }
    if (!m_driver->setSecurityFlags(handle, *flags | ignoredErrors)) {
        LogStream(Level::Error) << "Failed to set internet option. Last error: " << m_driver->lastError();
        return false;
    }
    return true;
}

bool InternetProxy::isHQAddress(const std::wstring& url, const std::wstring& hqUrl)
{
    if (hqUrl.empty() || !url.starts_with(hqUrl))
        return false;
    LogStream(Level::Info) << "Direct connection to HQ URL: " << withoutPasswords(url);
    return true;
}

void InternetProxy::applyCertificateSetting(void* handle)
{
    if (m_ignoreCertErrors && !ignoreCertificateErrors(handle))
        LogStream(Level::Warning) << "Failed to ignore certificate errors. Downloading will be continued";
}

} // namespace vx::tarn::common
