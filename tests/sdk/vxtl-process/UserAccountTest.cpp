#include "vxtl-process/users/useraccount.h"
#include "fakedrivers.h"
#include "process/effectiveadminrights.h"
#include "support/thrown.h"
#include "users/impersonatedscope.h"
#include "vxtl/win32exception.h"

using namespace vx::users;
using support::thrown;
using vx::Win32Exception;
using vx::process::detail::hasEffectiveAdminRights;

TEST(UserAccount, splitsAndJoinsItsName)
{
    const wchar_t* const rows[][4] = {{L"D\\u", L"D\\u", L"u", L"u@D"}, {L"u", L"u", L"u", L"u"},
        {L"\\u", L"u", L"u", L"u"}, {L"D\\u\\v", L"D\\u\\v", L"u\\v", L"u\\v@D"}, {L"u@D", L"u@D", L"u@D", L"u@D"}};
    for (const auto& [text, whole, user, userAtDomain] : rows) {
        const UserAccount account{std::wstring(text)};
        EXPECT_EQ(account.qualifiedName(), whole);
        EXPECT_EQ(account.qualifiedName(NameForm::User), user);
        EXPECT_EQ(account.qualifiedName(NameForm::UserAtDomain), userAtDomain);
    }
}

TEST(ImpersonatedScope, refusesWhatIsNoToken)
{
    const vx::KernelHandle noToken(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    EXPECT_THROW(ImpersonatedScope(noToken.get()), Win32Exception);
}

TEST(EffectiveAdminRights, countsADenyOnlyGroupToo)
{
    EXPECT_EQ(thrown<Win32Exception>([] { hasEffectiveAdminRights(nullptr); }).reason(), L"GetTokenInformation failed");
    const auto token = ownToken();
    if (!hasEffectiveAdminRights(token->get()))
        GTEST_SKIP() << "not run by an administrator";
    unsigned char sid[SECURITY_MAX_SID_SIZE];
    DWORD size = sizeof(sid);
    ASSERT_TRUE(CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, sid, &size));
    SID_AND_ATTRIBUTES disabled{sid, 0};
    HANDLE filtered = nullptr;
    ASSERT_TRUE(CreateRestrictedToken(token->get(), 0, 1, &disabled, 0, nullptr, 0, nullptr, &filtered));
    EXPECT_TRUE(hasEffectiveAdminRights(vx::KernelHandle(filtered).get()));
}
