#include "common/reboot/computerrebooter.h"
#include "common/reboot/flyeraudience.h"
#include "common/reboot/restartarguments.h"
#include "support/logcapture.h"

#include <gtest/gtest.h>
#include <limits>

namespace vx::tarn::common {
namespace {

using Step = PrivilegeFailure::Step;

struct FakeDriver : IRebootDriver {
    std::optional<PrivilegeFailure> privilege;
    std::optional<unsigned long> refusal;
    int* reboots = nullptr;

    std::optional<PrivilegeFailure> enableShutdownPrivilege() override { return privilege; }
    std::optional<unsigned long> reboot() override
    {
        ++*reboots;
        return refusal;
    }
};

TEST(ComputerRebooter, asksTheSystemOnceItMayAndSaysWhatCameOfIt)
{
    const struct {
        std::optional<PrivilegeFailure> privilege;
        std::optional<unsigned long> refusal;
        int reboots, level;
        std::vector<std::string> logged;
    } rows[] = {
        {{}, {}, 1, 4, {"ExitWindowsEx for reboot successfully completed."}},
        // A failure is one whatever code comes with it.
        {{}, 0, 1, 2, {"Error initiating shutdown. Last error code: 0"}},
        {{}, 1314, 1, 2, {"Error initiating shutdown. Last error code: 1314"}},
        {PrivilegeFailure{Step::OpenToken, 5}, {}, 0, 2,
            {"Failed to open process token, error 5", "Failed to acquire shutdown privileges"}},
        {PrivilegeFailure{Step::AdjustToken, 6}, {}, 0, 2,
            {"Failed to adjust token privileges, error 6", "Failed to acquire shutdown privileges"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.logged.front());
        const support::LogCapture log(4);
        int reboots = 0;
        auto driver = std::make_unique<FakeDriver>();
        driver->privilege = row.privilege;
        driver->refusal = row.refusal;
        driver->reboots = &reboots;
        EXPECT_EQ(ComputerRebooter(std::move(driver)).initiateReboot(), row.level == 4);
        EXPECT_EQ(reboots, row.reboots);
        EXPECT_EQ(log.lines().size(), row.logged.size()) << log.text();
        for (const auto& text : row.logged)
            EXPECT_TRUE(log.has(row.level, text)) << log.text();
    }
}

TEST(FlyerAudience, looksAtTheUserOnlyWhereThePolicyDependsOnHim)
{
    const struct {
        int policy;
        bool toUser, toAdmin;
        int looks;
    } rows[] = {{0, true, true, 0}, {1, false, true, 2}, {2, false, false, 0}, {3, true, true, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.policy);
        int looks = 0;
        const auto told = [&](bool isAdmin) {
            return isSessionTold(static_cast<ShowFlyerPolicyItem>(row.policy), [&] { return ++looks, isAdmin; });
        };
        EXPECT_EQ(told(false), row.toUser);
        EXPECT_EQ(told(true), row.toAdmin);
        EXPECT_EQ(looks, row.looks);
    }
}

TEST(RestartArguments, countTheForceTimeInWholeSecondsFromNow)
{
    constexpr Ticks now = 1'700'000'000'9999999;
    EXPECT_EQ(restartForceTime(now, std::chrono::seconds(600)), 1'700'000'600);
    EXPECT_EQ(restartForceTime(now, std::chrono::seconds(-2)), 1'699'999'998);
    constexpr auto forever = std::chrono::seconds(std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(restartForceTime(now, forever), std::numeric_limits<Ticks>::max() / ticksPerSecond);
    EXPECT_EQ(restartArguments(std::chrono::minutes(30), 1'700'000'600),
        L"--type tarn --postpone_for 30 --force_at 1700000600");
}

} // namespace
} // namespace vx::tarn::common
