#pragma once

#include <string>

namespace vx::users {

/// What the account database holds about one account. Each answer is read at the first question of its
/// group and may then block on a domain controller; a failure throws Win32Exception.
class UserAccountProperties {
public:
    virtual ~UserAccountProperties() = default;
    virtual bool isAccountDisabled() = 0;
    virtual bool isLockedOut() = 0;
    virtual bool isPasswordExpired() = 0;
    virtual bool isPasswordChangeForbidden() = 0;
    virtual bool isNotDelegated() = 0;
    virtual bool isNormalAccount() = 0;
    virtual bool isInterdomainTrustAccount() = 0;
    virtual bool isServerTrustAccount() = 0;
    virtual bool isGuest() = 0;
    virtual bool isUser() = 0;
    virtual bool isAdmin() = 0;
    /// Texts are empty where the database has none.
    virtual std::wstring getName() = 0;
    virtual std::wstring getHomeDirectory() = 0;
    virtual std::wstring getFullName() = 0;
    virtual std::wstring getWorkstations() = 0;
    virtual std::wstring getLogonServer() = 0;
    virtual unsigned long getCountryCode() = 0;
    virtual unsigned long getCodePage() = 0;
    virtual std::wstring getProfile() = 0;
    /// A native SID; borrowed, lives as long as this object.
    virtual void* getUserSid() = 0;
    virtual unsigned long getPrimaryGroupId() = 0;
};

} // namespace vx::users
