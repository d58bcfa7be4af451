#include "common/usersessions.h"
#include "support/logcapture.h"
#include "vxtl/users/useraccountproperties.h"
#include "vxtl/win32exception.h"

#include <windows.h>

using namespace vx;
using tarn::common::UserSessions;

TEST(CommonUserSessions, leadsFromATokenToTheAccountsProperties)
{
    UserSessions sessions;
    support::LogCapture log;
    HANDLE raw = nullptr;
    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &raw));
    const users::UserAccount account = sessions.getUserAccountByToken(std::make_shared<KernelHandle>(raw));
    const auto again = sessions.createUserAccount(account.qualifiedName());
    EXPECT_EQ(again.domain(), account.domain());
    const auto local = sessions.createUserAccount(std::wstring(), again.user());
    EXPECT_EQ(sessions.createUserAccountProperties(local)->getName(), account.user());
    EXPECT_THROW(sessions.getUserAccountByToken(nullptr), Win32Exception);
    EXPECT_FALSE(sessions.getUserSessions().empty());
    EXPECT_TRUE(log.has(5, "{ vx::tarn::common::UserSessions::getUserSessions"));
}
