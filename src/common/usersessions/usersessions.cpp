#include "common/usersessions/usersessions.h"

#include "logging/logstream.h"
#include "vxtl-process/users/useraccountpropertiesimpl.h"
#include "vxtl-process/users/usersessions.h"

namespace vx::tarn::common {

std::vector<unsigned long> UserSessions::getUserSessions()
{
    VX_LOG_SCOPE();
    return users::getUserSessions();
}

SharedHandle UserSessions::getToken(unsigned long session)
{
    VX_LOG_SCOPE();
    return users::getInteractivelyLoggedUserTokenForConsoleId(session);
}

users::UserAccount UserSessions::createUserAccount(const std::wstring& qualifiedName)
{
    VX_LOG_SCOPE();
    return users::UserAccount(qualifiedName);
}

users::UserAccount UserSessions::createUserAccount(const std::wstring& domain, const std::wstring& user)
{
    VX_LOG_SCOPE();
    return {domain, user};
}

users::UserAccount UserSessions::getUserAccountByToken(const SharedHandle& token)
{
    VX_LOG_SCOPE();
    return users::UserAccount(token ? token->get() : nullptr);
}

std::shared_ptr<users::UserAccountProperties> UserSessions::createUserAccountProperties(
    const users::UserAccount& account)
{
    VX_LOG_SCOPE();
    return std::make_shared<users::UserAccountPropertiesImpl>(account);
}

} // namespace vx::tarn::common
