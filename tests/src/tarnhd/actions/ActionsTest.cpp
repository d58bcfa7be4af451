#include "common/commonfactory.h"
#include "common/iupdaterlauncher.h"
#include "common/tarnpatchsettings.h"
#include "support/fakeclock.h"
#include "support/fakesettings.h"
#include "support/logcapture.h"
#include "tarnhd/scanifexpired.h"
#include "tarnhd/scanonce.h"
#include "tarnhd/startupautoscan.h"
#include "tarnhd/startupdeploywatchdog.h"

#include <gmock/gmock.h>

#include <thread>

namespace vx::tarn {
namespace {

using std::chrono::minutes;
using testing::ElementsAre;
using testing::IsEmpty;

/// Writes calls as "launcher: call", launchers counted from 1.
class FakeFactory : public common::CommonFactory {
public:
    std::vector<std::string> calls;

    std::shared_ptr<common::IUpdaterLauncher> createUpdaterLauncher() override
    {
        return std::make_shared<Launcher>(calls, std::to_string(++m_launchers) + ": ");
    }

private:
    struct Launcher : common::IUpdaterLauncher {
        Launcher(std::vector<std::string>& c, std::string p) : calls(c), prefix(std::move(p)) {}
        void startScan() override { calls.push_back(prefix + "start"); }
        void startScanIfOlderThan(std::int64_t s) override { calls.push_back(prefix + "older " + std::to_string(s)); }
        void startScanAt(std::int64_t) override { calls.push_back(prefix + "at"); }
        std::vector<std::string>& calls;
        const std::string prefix;
    };
    int m_launchers = 0;
};

class ActionsTest : public testing::Test {
protected:
    static constexpr auto wait = L"windows.tarnpatch.installation.completion.wait";
    static constexpr auto inProgress = L"windows.tarnpatch.installation.in_progress";
    static constexpr auto timestamp = L"windows.tarnpatch.installation.completion.timestamp";

    void expectSuccess(ActionBase& action) { EXPECT_EQ(action.execute(), common::exitstatus::success); }

    support::FakeClock clock;
    std::shared_ptr<support::FakeSettings> store = std::make_shared<support::FakeSettings>();
    TarnpatchSettings settings{support::FakeSettings::handle(store)};
    FakeFactory factory;
};

TEST_F(ActionsTest, scanIfExpiredComparesWithThePeriodInSeconds)
{
    const support::LogCapture log;
    ScanIfExpired action(&factory, &settings);
    expectSuccess(action);
    EXPECT_TRUE(log.has(4, "Tarnpatch maximum rescanning period is 24 hours. It's 86400 seconds.")) << log.text();
    for (const int hours : {0, 2'000'000'000}) {
        store->setInt32Value(L"windows.tarnpatch.scanning.automatic.maximum_rescanning_period", hours);
        expectSuccess(action);
    }
    EXPECT_THAT(factory.calls, ElementsAre("1: older 86400", "1: older 0", "1: older 7200000000000"));
}

TEST_F(ActionsTest, scanOnceAsksFromItsTimeOnUnlessADeploymentIsWaitedFor)
{
    const support::LogCapture log;
    ScanOnce action(&factory, &settings, clock.now + 1, clock.function());
    expectSuccess(action);
    EXPECT_TRUE(log.has(4, "Task time is not come yet")) << log.text();
    ++clock.now;
    store->setBoolValue(wait, true);
    expectSuccess(action);
    EXPECT_TRUE(log.has(4, "Waiting for deploy complete")) << log.text();
    EXPECT_THAT(factory.calls, IsEmpty());
    store->setBoolValue(wait, false);
    expectSuccess(action);
    EXPECT_THAT(factory.calls, ElementsAre("1: start"));
}

TEST_F(ActionsTest, startupScanDelayHasThePartOfAnUnseededGenerator)
{
    const support::LogCapture log;
    StartupAutoScan action(&factory, &settings);
    struct Row {
        int delay, interval;
        std::vector<minutes> delays;
    };
    // 41 and 18467 are the first two numbers of every thread.
    const Row rows[] = {{1, 5, {minutes(1), minutes(3)}}, {3, 799, {minutes(3)}}, {3, 800, {minutes(4)}},
        {0, 8000, {minutes(10), minutes(4508)}}, {2'000'000'000, 1, {minutes(2'000'000'000)}}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.interval);
        store->setInt32Value(L"windows.tarnpatch.scanning.automatic.scanning_on_system_startup.delay", row.delay);
        store->setInt32Value(
            L"windows.tarnpatch.scanning.automatic.scanning_on_system_startup.randomization_interval", row.interval);
        std::thread([&] {
            for (const minutes expected : row.delays)
                EXPECT_EQ(action.getDelay(), expected);
        }).join();
    }
    EXPECT_TRUE(log.has(4, "Delay for rescan on startup is 3 minute(s)")) << log.text();
    EXPECT_TRUE(log.has(4, "Randomization interval for rescan on startup is 800 minute(s)")) << log.text();
    EXPECT_TRUE(log.has(4, "Random delta for rescan on startup is 1 minute(s)")) << log.text();
    EXPECT_TRUE(log.has(4, "Total delay for rescan on startup is 4 minute(s)")) << log.text();
}

TEST_F(ActionsTest, startupScanUsesItsSecondLauncherWithTheObjectsAge)
{
    const support::LogCapture log;
    StartupAutoScan action(&factory, &settings, clock.function());
    clock.advance(std::chrono::milliseconds(61'999));
    store->setBoolValue(wait, true);
    expectSuccess(action);
    EXPECT_TRUE(log.has(4, "Can't start after reboot scan: deploy is in progress")) << log.text();
    EXPECT_THAT(factory.calls, IsEmpty());
    store->setBoolValue(wait, false);
    expectSuccess(action);
    EXPECT_THAT(factory.calls, ElementsAre("2: older 61"));
}

TEST_F(ActionsTest, watchdogGivesUpOnTheDeploymentThatItFound)
{
    store->setInt32Value(L"windows.tarnpatch.installation.completion.timeout", 20);
    struct Row {
        const char* name;
        bool waitBefore, progressBefore;
        std::int64_t timeBefore;
        bool waitAfter, progressAfter;
        std::int64_t timeAfter;
        minutes delay;
        bool resets;
        const char* line;
    };
    const Row rows[] = {
        {"wait pending", true, false, 7, true, false, 7, minutes(20), true, "Reset wait for deploy complete settings"},
        {"in progress", false, true, 7, true, true, 7, minutes(20), true, "Reset wait for deploy complete settings"},
        {"newer one", true, true, 7, true, true, 8, minutes(20), false, "New deploy was started"},
        {"finished", true, true, 7, false, false, 7, minutes(20), false, "Deploy already completed"},
        {"none", false, false, 7, false, false, 7, minutes(0), false, "Deploy already completed"},
        {"begun since", false, false, 7, true, true, 7, minutes(0), false, "New deploy was started"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const support::LogCapture lines;
        store->setBoolValue(wait, row.waitBefore);
        store->setBoolValue(inProgress, row.progressBefore);
        store->setInt64Value(timestamp, row.timeBefore);
        StartupDeployWatchdog action(&factory, &settings);
        EXPECT_EQ(action.getDelay(), row.delay);
        store->setBoolValue(wait, row.waitAfter);
        store->setBoolValue(inProgress, row.progressAfter);
        store->setInt64Value(timestamp, row.timeAfter);
        const std::size_t writes = store->writes().size();
        expectSuccess(action);
        auto written = store->writes();
        written.erase(written.begin(), written.begin() + static_cast<std::ptrdiff_t>(writes));
        EXPECT_EQ(written, row.resets ? (std::vector<std::wstring>{wait, inProgress}) : std::vector<std::wstring>{});
        EXPECT_EQ(store->getBoolValue(wait), row.waitAfter && !row.resets);
        EXPECT_TRUE(lines.has(4, row.line)) << lines.text();
    }
    EXPECT_THAT(factory.calls, IsEmpty());
}

} // namespace
} // namespace vx::tarn
