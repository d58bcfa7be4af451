#pragma once

#include "vxtl-process/users/useraccount.h"
#include "vxtl/handle.h"

#include <memory>
#include <string>
#include <vector>

namespace vx::users {
class UserAccountProperties;
}

namespace vx::tarn::common {

/// The logged-on users and their accounts.
class IUserSessions {
public:
    virtual ~IUserSessions() = default;
    /// The console session first, then the active sessions that have a user.
    virtual std::vector<unsigned long> getUserSessions() = 0;
    /// The token of the session's user. Throws Win32Exception.
    virtual SharedHandle getToken(unsigned long session) = 0;
    /// From "domain\user", or the user alone.
    virtual users::UserAccount createUserAccount(const std::wstring& qualifiedName) = 0;
    virtual users::UserAccount createUserAccount(const std::wstring& domain, const std::wstring& user) = 0;
    /// Throws Win32Exception.
    virtual users::UserAccount getUserAccountByToken(const SharedHandle& token) = 0;
    /// Reads nothing yet; the properties throw Win32Exception, with code 2453 when no domain controller can
    /// be reached.
    virtual std::shared_ptr<users::UserAccountProperties> createUserAccountProperties(
        const users::UserAccount& account) = 0;
};

} // namespace vx::tarn::common
