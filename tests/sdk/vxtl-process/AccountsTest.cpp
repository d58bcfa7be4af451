#include "fakedrivers.h"
#include "priveleges/lsauserprivilegesholerimpl.h"
#include "priveleges/privilegesgrantscopeimpl.h"
#include "process/effectiveadminrights.h"
#include "support/filteredtoken.h"
#include "support/logcapture.h"
#include "support/thrown.h"
#include "vxtl-process/users/useraccount.h"
#include "vxtl-process/users/useraccountpropertiesimpl.h"
#include "vxtl-process/users/usersessions.h"
#include "vxtl/win32exception.h"

#include <map>

using namespace vx;
using namespace vx::priveleges;
using namespace vx::users;
using process::detail::hasEffectiveAdminRights;
using support::thrown;
using testing::Each;
using testing::ElementsAre;

namespace {

struct FakeSessionDriver : SessionDriver {
    bool fails = false;
    std::vector<Session> sessions;
    std::map<unsigned long, std::optional<std::wstring>> users;
    std::map<unsigned long, std::optional<unsigned short>> protocols;

    unsigned long activeConsoleSession() override { return 1; }
    bool enumerate(std::vector<Session>& result) override
    {
        result = sessions;
        SetLastError(ERROR_ACCESS_DENIED);
        return !fails;
    }
    std::optional<std::wstring> userName(unsigned long id) override { return users[id]; }
    std::optional<unsigned short> clientProtocol(unsigned long id) override { return protocols[id]; }
    SharedHandle userToken(unsigned long) override
    {
        SetLastError(ERROR_NO_TOKEN);
        return nullptr;
    }
};

} // namespace

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

TEST(EffectiveAdminRights, countsADenyOnlyGroupToo)
{
    EXPECT_EQ(thrown<Win32Exception>([] { hasEffectiveAdminRights(nullptr); }).reason(), L"GetTokenInformation failed");
    if (!hasEffectiveAdminRights(ownToken()->get()))
        GTEST_SKIP() << "not run by an administrator";
    EXPECT_TRUE(hasEffectiveAdminRights(KernelHandle(support::tokenWithoutAdministrators()).get()));
}

TEST(UserSessions, listsTheConsoleThenActiveSessionsWithAUser)
{
    FakeSessionDriver driver;
    support::LogCapture log;
    driver.sessions = {{0, L"sERVICES", 0}, {7, L"RDP-Tcp#1", 0}, {1, L"Console", 0}, {2, L"idle", 4}, {3, L"none", 0},
        {4, L"blank", 0}, {5, L"no protocol", 0}, {6, L"ICA", 0}, {8, L"other", 0}};
    driver.users = {{0, L"sys"}, {7, L"ann"}, {1, L"joe"}, {2, L"off"}, {4, L""}, {5, L"odd"}, {6, L"cy"}, {8, L"di"}};
    driver.protocols = {{0, 0}, {7, 2}, {1, 0}, {2, 2}, {3, 2}, {4, 2}, {6, 1}, {8, 9}};
    EXPECT_THAT(getUserSessions(driver), ElementsAre(1, 7, 6, 8));
    EXPECT_TRUE(log.has(4, "WTS Found logged in user (7, ann, RDP)")) << log.text();
    driver.fails = true;
    EXPECT_THAT(getUserSessions(driver), ElementsAre(1)) << "the console is known without the list";
    const auto token = [&] { getInteractivelyLoggedUserTokenForConsoleId(1, driver); };
    EXPECT_EQ(thrown<Win32Exception>(token).code(), ERROR_NO_TOKEN);
}

TEST(PrivilegesGrantScope, takesBackExactlyWhatItGave)
{
    FakePolicyDriver driver;
    support::LogCapture log;
    driver.rights = {L"SeOld"};
    const auto holder = std::make_shared<LsaUserPrivilegesHolerImpl>(L"joe", nullptr, driver);
    {
        PrivilegesGrantScopeImpl scope(holder);
        for (const wchar_t* right : {L"SeB", L"SeOld", L"SeA", L"SeB"})
            EXPECT_TRUE(scope.grant(right));
        driver.status = -5;
        EXPECT_FALSE(holder->hasPrivilege(L"SeOld"));
        EXPECT_FALSE(scope.grant(L"SeRefused"));
        EXPECT_TRUE(driver.removed.empty());
    }
    // Each is tried, although the first could not be taken back.
    EXPECT_THAT(driver.removed, ElementsAre(L"SeB", L"SeA"));
    EXPECT_TRUE(log.has(2, "LsaEnumerateAccountRights() failed (Error: -5)")) << log.text();
}

TEST(Priveleges, areThoseOfTheSystemsPolicy)
{
    EXPECT_FALSE(LsaUserPrivilegesHolerImpl(L"SYSTEM", nullptr).hasPrivilege(L"SeNoSuchPrivilege"));
    const auto unknown = [] { LsaUserPrivilegesHolerImpl(L"NOWHERE\\nobody", nullptr); };
    EXPECT_EQ(thrown<Win32Exception>(unknown).code(), static_cast<unsigned long>(ERROR_NONE_MAPPED));
}
