#include "fakeaccountdriver.h"
#include "ownaccount.h"
#include "support/thrown.h"
#include "vxtl/users/useraccountpropertiesimpl.h"
#include "vxtl/win32exception.h"

using namespace vx;
using namespace vx::users;
using support::thrown;
using testing::ElementsAre;

static const std::wstring none;

TEST(UserAccountProperties, tellsWhichCallFailed)
{
    FakeAccountDriver driver;
    UserAccountPropertiesImpl properties(UserAccount(L"FAR", L"joe"), driver);
    driver.controller = {2453, nullptr};
    const Win32Exception unreachable = thrown<Win32Exception>([&] { properties.isAdmin(); });
    EXPECT_EQ(unreachable.code(), 2453u);
    EXPECT_EQ(unreachable.reason(), L"NetGetDCName failed at resolving of FAR\\joe");
    driver.controller = {0, nullptr};
    EXPECT_EQ(thrown<Win32Exception>([&] { properties.isAdmin(); }).code(), 0u);
    EXPECT_TRUE(driver.userQueries.empty());

    UserAccountPropertiesImpl local(UserAccount(none, L"joe"), driver);
    driver.userStatus = 2221;
    const Win32Exception unknown = thrown<Win32Exception>([&] { local.getProfile(); });
    EXPECT_EQ(unknown.code(), 2221u);
    EXPECT_EQ(unknown.reason(), L"NetUserGetInfo fail at level 4");
}

TEST(UserAccountProperties, readsEachLevelOnceAndAgainAfterAFailure)
{
    FakeAccountDriver driver;
    driver.userStatus = 5;
    UserAccountPropertiesImpl properties(UserAccount(L"FAR", L"joe"), driver);
    driver.controller = {0, std::shared_ptr<const void>(L"\\\\DC", [](const void*) {})};
    EXPECT_THROW(properties.isAdmin(), Win32Exception);
    driver.userStatus = 0;
    properties.isAdmin();
    EXPECT_EQ(properties.getName(), L"");
    properties.isLockedOut();
    properties.getCodePage();
    EXPECT_EQ(properties.getFullName(), L"");
    EXPECT_EQ(properties.getUserSid(), nullptr);
    properties.getPrimaryGroupId();
    EXPECT_THAT(driver.userQueries, ElementsAre(L"\\\\DC/joe/1", L"\\\\DC/joe/1", L"\\\\DC/joe/2", L"\\\\DC/joe/4"));
}

TEST(UserAccountProperties, asksNoControllerForALocalAccount)
{
    for (const wchar_t* domain : {L"", L".", L"HERE", L"here"}) {
        FakeAccountDriver driver;
        UserAccountPropertiesImpl(UserAccount(domain, L"joe"), driver).isAdmin();
        EXPECT_TRUE(driver.controllerQueries.empty());
        EXPECT_THAT(driver.userQueries, ElementsAre(L"-/joe/1"));
    }
    EXPECT_FALSE(isLocalDomain(L"..") || isLocalDomain(L"HEREABOUTS"));
}

TEST(UserAccountProperties, readsTheRightBits)
{
    using Question = bool (UserAccountProperties::*)();
    const std::pair<unsigned long, Question> rows[] = {{0x2, &UserAccountProperties::isAccountDisabled},
        {0x10, &UserAccountProperties::isLockedOut}, {0x800000, &UserAccountProperties::isPasswordExpired},
        {0x40, &UserAccountProperties::isPasswordChangeForbidden}, {0x100000, &UserAccountProperties::isNotDelegated},
        {0x200, &UserAccountProperties::isNormalAccount}, {0x800, &UserAccountProperties::isInterdomainTrustAccount},
        {0x2000, &UserAccountProperties::isServerTrustAccount}};
    for (const auto& [bit, question] : rows) {
        for (const bool set : {true, false}) {
            FakeAccountDriver driver;
            driver.flags = set ? bit : ~bit;
            UserAccountPropertiesImpl properties(UserAccount(none, L"joe"), driver);
            EXPECT_EQ((properties.*question)(), set) << std::hex << bit;
        }
    }
    for (const unsigned long privilege : {0, 1, 2, 4}) {
        FakeAccountDriver driver;
        driver.privilege = privilege;
        UserAccountPropertiesImpl properties(UserAccount(none, L"joe"), driver);
        EXPECT_EQ(properties.isGuest(), privilege == 0 || privilege == 4);
        EXPECT_EQ(properties.isUser(), privilege == 1);
        EXPECT_EQ(properties.isAdmin(), privilege == 2);
    }
}

TEST(UserAccountProperties, readsTheCallersOwnAccount)
{
    UserAccountPropertiesImpl properties{UserAccount(L".", ownName())};
    EXPECT_EQ(properties.getName(), ownName());
    EXPECT_FALSE(properties.isAccountDisabled());
    EXPECT_EQ(
        thrown<Win32Exception>([] { UserAccountPropertiesImpl(UserAccount(L".", L"no such user")).isAdmin(); }).code(),
        2221u);
}
