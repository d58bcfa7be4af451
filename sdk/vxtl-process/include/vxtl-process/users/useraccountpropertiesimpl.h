#pragma once

#include "vxtl-process/users/accountdriver.h"
#include "vxtl-process/users/useraccount.h"
#include "vxtl-process/users/useraccountproperties.h"

#include <memory>

namespace vx::users {

/// Whether accounts of this domain are held by this computer: no domain, ".", or the computer's name in any
/// case.
bool isLocalDomain(const std::wstring& name, AccountDriver& driver = systemAccountDriver());

/// Reads each of the three information levels at most once, when first needed. One thread: the buffers are
/// not locked. The driver is borrowed.
class UserAccountPropertiesImpl : public UserAccountProperties {
public:
    explicit UserAccountPropertiesImpl(UserAccount account, AccountDriver& driver = systemAccountDriver());
    UserAccountPropertiesImpl(const UserAccountPropertiesImpl&) = delete;
    UserAccountPropertiesImpl& operator=(const UserAccountPropertiesImpl&) = delete;

    bool isAccountDisabled() override;
    bool isLockedOut() override;
    bool isPasswordExpired() override;
    bool isPasswordChangeForbidden() override;
    bool isNotDelegated() override;
    bool isNormalAccount() override;
    bool isInterdomainTrustAccount() override;
    bool isServerTrustAccount() override;
    bool isGuest() override;
    bool isUser() override;
    bool isAdmin() override;
    std::wstring getName() override;
    std::wstring getHomeDirectory() override;
    std::wstring getFullName() override;
    std::wstring getWorkstations() override;
    std::wstring getLogonServer() override;
    unsigned long getCountryCode() override;
    unsigned long getCodePage() override;
    std::wstring getProfile() override;
    void* getUserSid() override;
    unsigned long getPrimaryGroupId() override;

private:
    using Buffer = std::shared_ptr<const void>;

    void requireLevel(unsigned long level, Buffer& buffer);
    template <typename Record>
    const Record& record(unsigned long level, Buffer& buffer);
    bool hasFlag(unsigned long flag);
    unsigned long privilege();
    Buffer domainController();

    UserAccount m_account;
    AccountDriver& m_driver;
    Buffer m_level1;
    Buffer m_level2;
    Buffer m_level4;
};

} // namespace vx::users
