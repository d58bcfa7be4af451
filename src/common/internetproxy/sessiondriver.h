#pragma once

#include <optional>
#include <string>

namespace vx::tarn::common {

/// The system's internet sessions. After null, false or nothing lastError tells why, until the thread's next system
/// call. Any thread, but one at a time for a session. Handles are the system's and are not owned.
class ISessionDriver {
public:
    virtual ~ISessionDriver() = default;
    /// The way that the system is configured to go, or through a proxy. Null on failure.
    virtual void* open(const std::wstring& userAgent, const std::optional<std::wstring>& proxyAddress) = 0;
    virtual bool setProxyUser(void* session, const std::wstring& user) = 0;
    virtual bool setProxyPassword(void* session, const std::wstring& password) = 0;
    /// SECURITY_FLAG_ bits.
    virtual std::optional<unsigned long> securityFlags(void* session) = 0;
    virtual bool setSecurityFlags(void* session, unsigned long flags) = 0;
    virtual unsigned long lastError() = 0;
};

/// The real one. Throws Win32Exception when the system's library is missing.
class SessionDriver : public ISessionDriver {
public:
    void* open(const std::wstring& userAgent, const std::optional<std::wstring>& proxyAddress) override;
    bool setProxyUser(void* session, const std::wstring& user) override;
    bool setProxyPassword(void* session, const std::wstring& password) override;
    std::optional<unsigned long> securityFlags(void* session) override;
    bool setSecurityFlags(void* session, unsigned long flags) override;
    unsigned long lastError() override;
};

} // namespace vx::tarn::common
