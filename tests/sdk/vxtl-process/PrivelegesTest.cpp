#include "fakedrivers.h"
#include "priveleges/lsauserprivilegesholerimpl.h"
#include "priveleges/privilegesgrantscopeimpl.h"
#include "support/logcapture.h"
#include "support/thrown.h"
#include "vxtl/win32exception.h"

using namespace vx;
using namespace vx::priveleges;
using testing::ElementsAre;

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
    EXPECT_EQ(support::thrown<Win32Exception>(unknown).code(), static_cast<unsigned long>(ERROR_NONE_MAPPED));
}
