#include "fakedrivers.h"
#include "priveleges/lsauserprivilegesholerimpl.h"
#include "priveleges/privilegesgrantscopeimpl.h"
#include "support/logcapture.h"
#include "support/thrown.h"
#include "vxtl/win32exception.h"

using namespace vx;
using namespace vx::priveleges;
using testing::ElementsAre;

TEST(Priveleges, failsToOpenAndClosesThePolicyAgain)
{
    FakePolicyDriver driver;
    support::LogCapture log;
    driver.status = -5;
    const auto open = [&] { LsaUserPrivilegesHolerImpl(L"D\\joe", nullptr, driver); };
    const auto failure = support::thrown<Win32Exception>(open);
    EXPECT_EQ(failure.code(), 5u);
    EXPECT_EQ(failure.reason(), L"getPolicyHandle failed");
    driver.status = 0;
    driver.known = false;
    EXPECT_THROW(open(), Win32Exception);
    EXPECT_TRUE(log.has(2, "getUserSid(D\\joe) failed (Error: 1332)")) << log.text();
    EXPECT_TRUE(driver.opened.expired());
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

TEST(Priveleges, reachesTheSystemsPolicy)
{
    EXPECT_FALSE(LsaUserPrivilegesHolerImpl(L"SYSTEM", nullptr).hasPrivilege(L"SeNoSuchPrivilege"));
}
