#include "vxtl/users/useraccount.h"
#include "ownaccount.h"
#include "support/thrown.h"
#include "vxtl/process/effectiveadminrights.h"
#include "vxtl/users/impersonatedscope.h"
#include "vxtl/win32exception.h"

using namespace vx::users;
using support::thrown;
using testing::HasSubstr;
using vx::Win32Exception;
using vx::process::detail::hasEffectiveAdminRights;

TEST(UserAccount, splitsAndJoinsItsName)
{
    struct {
        const wchar_t *text, *domain, *user, *form0, *form1, *form2;
    } rows[] = {
        {L"D\\u", L"D", L"u", L"D\\u", L"u", L"u@D"},
        {L"u", L"", L"u", L"u", L"u", L"u"},
        {L"\\u", L"", L"u", L"u", L"u", L"u"},
        {L"D\\u\\v", L"D", L"u\\v", L"D\\u\\v", L"u\\v", L"u\\v@D"},
        {L"u@D", L"", L"u@D", L"u@D", L"u@D", L"u@D"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(row.text)));
        const UserAccount account{std::wstring(row.text)};
        EXPECT_EQ(account.domain(), row.domain);
        EXPECT_EQ(account.user(), row.user);
        EXPECT_EQ(account.qualifiedName(), row.form0);
        EXPECT_EQ(account.qualifiedName(NameForm(7)), row.form0);
        EXPECT_EQ(account.qualifiedName(NameForm(1)), row.form1);
        EXPECT_EQ(account.qualifiedName(NameForm(2)), row.form2);
    }
}

TEST(UserAccount, namesTheTokensUser)
{
    const UserAccount account(ownToken(TOKEN_QUERY)->get());
    EXPECT_EQ(account.user(), ownName());
    EXPECT_FALSE(account.domain().empty());
    EXPECT_THAT(thrown<Win32Exception>([] { UserAccount(static_cast<void*>(nullptr)); }).what(),
        HasSubstr("vx::users::`anonymous-namespace'::getNamesByToken,"));
}

TEST(ImpersonatedScope, refusesWhatIsNoToken)
{
    EXPECT_FALSE(ImpersonatedScope(nullptr).impersonated());
    const vx::KernelHandle noToken(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    EXPECT_THAT(thrown<Win32Exception>([&] { ImpersonatedScope scope(noToken.get()); }).what(),
        HasSubstr("Function: vx::users::ImpersonatedScope::ImpersonatedScope,"));
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
