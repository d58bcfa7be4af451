#pragma once

#include <memory>
#include <string>

namespace vx::tarn::common {

class ISessionDriver;

/// A way to the internet. One thread, that of the download. No log line of these classes holds a password.
class InternetProxy {
public:
    virtual ~InternetProxy();
    InternetProxy(const InternetProxy&) = delete;
    InternetProxy& operator=(const InternetProxy&) = delete;

    /// Opens a session for downloads of this URL; the caller closes the handle, which is the system's. Null when the
    /// system refuses; the thread's last error tells why. Throws what reading the settings throws, and what
    /// ProxyInfo::parse throws.
    virtual void* openInternetConnection(const std::wstring& userAgent, const std::wstring& url) = 0;
    /// The proxy as it is configured, with the password if it has one: not for a log.
    virtual std::wstring proxyText() = 0;
    /// Lets the session accept certificates that don't fit, have expired or can't be checked. False, logged, when
    /// it does not.
    virtual bool ignoreCertificateErrors(void* handle);

    /// Whether the URL begins with that of the management server, in the same case; it is reached directly then. An
    /// empty `hqUrl` is none.
    static bool isHQAddress(const std::wstring& url, const std::wstring& hqUrl);

protected:
    InternetProxy(std::shared_ptr<ISessionDriver> driver, bool ignoreCertErrors);

    /// Does as told at construction; a failure is logged.
    void applyCertificateSetting(void* handle);

    const std::shared_ptr<ISessionDriver> m_driver;

private:
    const bool m_ignoreCertErrors;
};

} // namespace vx::tarn::common
