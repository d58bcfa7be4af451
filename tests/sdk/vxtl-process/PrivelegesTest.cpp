#include "ownaccount.h"
#include "support/logcapture.h"
#include "support/thrown.h"
#include "vxtl/priveleges/lsauserprivilegesholerimpl.h"
#include "vxtl/priveleges/privilegesgrantscopeimpl.h"
#include "vxtl/win32exception.h"

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
    unsigned long access = 0;

    long open(const wchar_t*, unsigned long wanted, std::shared_ptr<void>& policy) override
    {
        access = wanted;
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
    EXPECT_EQ(driver.access, 2064u);
    driver.status = 0;
    driver.known = false;
    EXPECT_THROW(open(), Win32Exception);
    EXPECT_TRUE(log.has(2, "getUserSid(D\\joe) failed (Error: 1332)")) << log.text();
    EXPECT_TRUE(driver.opened.expired());
}

TEST(Priveleges, answersNoAndLogsWhenThePolicyRefuses)
{
    FakePolicyDriver driver;
    support::LogCapture log;
    driver.rights = {L"SeOne"};
    LsaUserPrivilegesHolerImpl holder(L"D\\joe", nullptr, driver);
    EXPECT_TRUE(holder.hasPrivilege(L"SeOne"));
    EXPECT_FALSE(holder.hasPrivilege(L"seone") || holder.hasPrivilege(L"SeOn"));
    driver.status = -7;
    EXPECT_FALSE(holder.hasPrivilege(L"SeOne"));
    EXPECT_FALSE(holder.addPrivilege(L"SeTwo"));
    EXPECT_FALSE(holder.removePrivilege(L"SeOne"));
    for (const char* line : {"LsaEnumerateAccountRights() failed (Error: -7)",
             "LsaAddAccountRights(SeTwo) failed (Error: -7)", "LsaRemoveAccountRights(SeOne) failed (Error: -7)"})
        EXPECT_TRUE(log.has(2, line)) << log.text();
}

TEST(PrivilegesGrantScope, takesBackExactlyWhatItGave)
{
    FakePolicyDriver driver;
    support::LogCapture log;
    driver.rights = {L"SeOld"};
    {
        PrivilegesGrantScopeImpl scope(std::make_shared<LsaUserPrivilegesHolerImpl>(L"joe", nullptr, driver));
        EXPECT_TRUE(scope.grant(L"SeB"));
        EXPECT_TRUE(scope.grant(L"SeOld"));
        EXPECT_TRUE(scope.grant(L"SeA"));
        EXPECT_TRUE(scope.grant(L"SeB"));
        driver.status = -5;
        EXPECT_FALSE(scope.grant(L"SeRefused"));
        EXPECT_TRUE(driver.removed.empty());
    }
    // Each is tried, although the first could not be taken back.
    EXPECT_THAT(driver.removed, ElementsAre(L"SeB", L"SeA"));
    EXPECT_TRUE(log.has(4, "Already has a privilege: SeOld")) << log.text();
}

TEST(Priveleges, reachesTheSystemsPolicy)
{
    support::LogCapture log;
    EXPECT_FALSE(LsaUserPrivilegesHolerImpl(ownName(), nullptr).hasPrivilege(L"SeNoSuchPrivilege"));
    EXPECT_EQ(log.count("getUserSid("), 0u) << log.text();
}
