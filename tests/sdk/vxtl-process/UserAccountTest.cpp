#include "vxtl-process/users/useraccount.h"
#include "fakedrivers.h"
#include "process/effectiveadminrights.h"
#include "support/filteredtoken.h"
#include "support/thrown.h"
#include "users/impersonatedscope.h"
#include "vxtl-process/users/useraccountpropertiesimpl.h"
#include "vxtl/win32exception.h"

using namespace vx::users;
using support::thrown;
using testing::Each;
using testing::ElementsAre;
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

TEST(UserAccountProperties, tellsWhichCallFailedAndReadsEachLevelOnce)
{
    FakeAccountDriver driver;
    UserAccountPropertiesImpl properties(UserAccount(L"FAR", L"joe"), driver);
    driver.controller = {2453, nullptr};
    const Win32Exception unreachable = thrown<Win32Exception>([&] { properties.isAdmin(); });
    EXPECT_EQ(unreachable.code(), 2453u);
    EXPECT_EQ(unreachable.reason(), L"NetGetDCName failed at resolving of FAR\\joe");
    EXPECT_TRUE(driver.queries.empty());
    driver.controller = {0, std::shared_ptr<const void>(L"\\\\DC", [](const void*) {})};
    driver.userStatus = 2221;
    const Win32Exception unknown = thrown<Win32Exception>([&] { properties.isAdmin(); });
    EXPECT_EQ(unknown.code(), 2221u);
    EXPECT_EQ(unknown.reason(), L"NetUserGetInfo fail at level 1");
    driver.userStatus = 0;
    properties.isAdmin();
    EXPECT_EQ(properties.getName(), L"") << "a null text";
    EXPECT_EQ(properties.getUserSid(), nullptr);
    EXPECT_THAT(driver.queries, ElementsAre(L"\\\\DC/joe/1", L"\\\\DC/joe/1", L"\\\\DC/joe/4"));
}

TEST(UserAccountProperties, asksNoControllerForALocalAccount)
{
    FakeAccountDriver driver;
    driver.controller = {2453, nullptr};
    for (const wchar_t* domain : {L"", L".", L"HERE", L"here"})
        EXPECT_NO_THROW(UserAccountPropertiesImpl(UserAccount(domain, L"joe"), driver).isAdmin());
    EXPECT_THAT(driver.queries, Each(L"-/joe/1"));
    EXPECT_FALSE(isLocalDomain(L"..") || isLocalDomain(L"HEREABOUTS"));
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
