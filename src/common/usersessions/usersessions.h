#pragma once

#include "common/usersessions/iusersessions.h"

namespace vx::tarn::common {

/// The system's own sessions and accounts. No state; any thread.
class UserSessions : public IUserSessions {
public:
    std::vector<unsigned long> getUserSessions() override;
    SharedHandle getToken(unsigned long session) override;
    users::UserAccount createUserAccount(const std::wstring& qualifiedName) override;
    users::UserAccount createUserAccount(const std::wstring& domain, const std::wstring& user) override;
    users::UserAccount getUserAccountByToken(const SharedHandle& token) override;
    std::shared_ptr<users::UserAccountProperties> createUserAccountProperties(
        const users::UserAccount& account) override;
};

} // namespace vx::tarn::common
