#include "vxtl-process/users/useraccount.h"
#include "fakedrivers.h"
#include "process/effectiveadminrights.h"
#include "support/filteredtoken.h"
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
    if (!hasEffectiveAdminRights(ownToken()->get()))
        GTEST_SKIP() << "not run by an administrator";
    EXPECT_TRUE(hasEffectiveAdminRights(vx::KernelHandle(support::tokenWithoutAdministrators()).get()));
}
