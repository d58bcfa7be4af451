#include "priveleges/lsauserprivilegesholerimpl.h"
#include "priveleges/privilegesgrantscopeimpl.h"
#include "support/logcapture.h"
#include "support/thrown.h"
#include "vxtl/win32exception.h"

#include <windows.h>

using namespace vx;
using namespace vx::priveleges;
using testing::ElementsAre;

namespace {

/// One account's rights; each call fails with the status when that is set.
struct FakePolicyDriver : PolicyDriver {
    long status = 0;
    bool known = true;
    std::vector<std::wstring> rights;
    std::vector<std::wstring> removed;
    std::weak_ptr<void> opened;

    long open(const wchar_t*, unsigned long, std::shared_ptr<void>& policy) override
    {
        if (status == 0)
            opened = policy = std::make_shared<int>();
        return status;
    }
    unsigned long errorOf(long failed) override { return static_cast<unsigned long>(-failed); }
    bool lookUpSid(const wchar_t*, const std::wstring&, Sid&) override
    {
        SetLastError(ERROR_NONE_MAPPED);
        return known;
    }
    long enumerateRights(void*, const Sid&, std::vector<std::wstring>& result) override
    {
        result = rights;
        return status;
    }
    long addRight(void*, const Sid&, const std::wstring& right) override
    {
        if (status == 0)
            rights.push_back(right);
        return status;
    }
    long removeRight(void*, const Sid&, const std::wstring& right) override
    {
        removed.push_back(right);
        return status;
    }
};

} // namespace

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
