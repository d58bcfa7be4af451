#include "common/factory/commonfactory.h"
#include "common/settings/tarnpatchsettings.h"
#include "common/updaterlauncher/iupdaterlauncher.h"
#include "common/windowsupdates/iwindowsupdates.h"
#include "support/fakeclock.h"
#include "support/fakesettings.h"
#include "support/logcapture.h"
#include "tarnhd/actions/scanafterwindowsupdate.h"
#include "tarnhd/actions/scanifexpired.h"
#include "tarnhd/actions/scanonce.h"
#include "tarnhd/actions/startupautoscan.h"
#include "tarnhd/actions/startupdeploywatchdog.h"

#include <cstdlib>

namespace vx::tarn {
namespace {

using std::chrono::minutes;
using Calls = std::vector<std::string>;

/// Is itself the launcher and the automatic updates that it gives out.
struct FakeFactory : common::CommonFactory, common::IUpdaterLauncher, common::IWindowsUpdates {
    std::shared_ptr<common::IUpdaterLauncher> createUpdaterLauncher() override
    {
        return {std::shared_ptr<void>(), this};
    }
    void startScan() override { calls.push_back("start"); }
    void startScanIfOlderThan(std::int64_t s) override { calls.push_back("older " + std::to_string(s)); }
    void startScanAt(std::int64_t) override { calls.push_back("at"); }
    std::shared_ptr<common::IWindowsUpdates> createWindowsUpdates() override { return {std::shared_ptr<void>(), this}; }
    common::ExitStatus pause() override { return common::exitstatus::unknownStatus; }
    common::ExitStatus resume() override { return common::exitstatus::unknownStatus; }
    common::ExitStatus restore() override { return common::exitstatus::unknownStatus; }
    Ticks getLastInstallationDate() override { return lastInstallation; }
    Calls calls;
    Ticks lastInstallation = common::neverInstalled;
};

struct ActionsTest : testing::Test {
    Calls callsOf(ActionBase& action)
    {
        factory.calls.clear();
        EXPECT_EQ(action.execute(), common::exitstatus::success);
        return factory.calls;
    }
    void setDeployment(bool wait, bool inProgress, int timestamp)
    {
        store->set(completion.wait, wait);
        store->set(settings.installation.inProgress, inProgress);
        store->set(completion.timestamp, timestamp);
    }

    support::FakeClock clock;
    std::shared_ptr<support::FakeSettings> store = std::make_shared<support::FakeSettings>();
    TarnpatchSettings settings{support::FakeSettings::handle(store)};
    const CompletionSettings& completion = settings.installation.completion;
    FakeFactory factory;
};

TEST_F(ActionsTest, scanIfExpiredComparesWithThePeriodInSeconds)
{
    ScanIfExpired action(&factory, &settings);
    EXPECT_EQ(callsOf(action), Calls{"older 86400"});
    store->set(settings.scanning.automatic.maximumRescanningPeriod, 2'000'000'000);
    EXPECT_EQ(callsOf(action), Calls{"older 7200000000000"});
}

TEST_F(ActionsTest, scanAfterWindowsUpdateAsksWithTheUpdatesAge)
{
    const support::LogCapture log;
    ScanAfterWindowsUpdate action(&factory, &settings, clock.function());
    EXPECT_EQ(callsOf(action), Calls{});
    EXPECT_TRUE(log.has(4, "Windows update has never been installed")) << log.text();
    clock.now = 100 * ticksPerSecond;
    const struct {
        Ticks date;
        const char* call;
    } rows[] = {{39 * ticksPerSecond + 1, "older 60"}, {0, "older 100"}, {107 * ticksPerSecond, "older -7"},
        {common::neverInstalled + 1, "older 922337203685"}};
    for (const auto& row : rows) {
        factory.lastInstallation = row.date;
        EXPECT_EQ(callsOf(action), Calls{row.call});
    }
    EXPECT_TRUE(log.has(4, "Trying to start scan after windows update if expired. Duration: -7 second(s)"));
}

TEST_F(ActionsTest, scansWaitForTheirTimeAndForADeployment)
{
    ScanOnce once(&factory, &settings, clock.now + 61'999 * ticksPerMillisecond, clock.function());
    StartupAutoScan startup(&factory, &settings, clock.function());
    EXPECT_EQ(callsOf(once), Calls{});
    clock.advance(std::chrono::milliseconds(61'999));
    store->set(completion.wait, true);
    EXPECT_EQ(callsOf(once), Calls{});
    EXPECT_EQ(callsOf(startup), Calls{});
    store->set(completion.wait, false);
    EXPECT_EQ(callsOf(once), Calls{"start"});
    EXPECT_EQ(callsOf(startup), Calls{"older 61"}) << "the object's age";
}

TEST_F(ActionsTest, startupScanDelayHasThePartOfAnUnseededGenerator)
{
    const auto& startup = settings.scanning.automatic.scanningOnSystemStartup;
    const struct {
        int delay, interval, expected[4];
    } rows[] = {{3, 799, {3, 453, 157, 649}}, {3, 800, {4, 453, 157, 649}},
        {2'000'000'000, 1, {2'000'000'000, 2'000'000'000, 2'000'000'000, 2'000'000'000}}};
    for (const auto& row : rows) {
        store->set(startup.delay, row.delay);
        store->set(startup.randomizationInterval, row.interval);
        // Another module of the host may have drawn on this thread, or seeded the generator.
        std::srand(row.interval);
        StartupAutoScan action(&factory, &settings);
        for (const int expected : row.expected)
            EXPECT_EQ(action.getDelay(), minutes(expected));
    }
}

TEST_F(ActionsTest, watchdogGivesUpOnTheDeploymentThatItFound)
{
    store->set(completion.timeout, 20);
    const struct {
        const char* name;
        bool waitBefore, progressBefore, waitAfter, progressAfter;
        int timeAfter, delay;
        bool resets;
    } rows[] = {
        {"wait pending", true, false, true, false, 7, 20, true},
        {"in progress", false, true, true, true, 7, 20, true},
        {"newer one", true, true, true, true, 8, 20, false},
        {"finished", true, true, false, false, 7, 20, false},
        {"begun since", false, false, true, true, 7, 0, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        setDeployment(row.waitBefore, row.progressBefore, 7);
        StartupDeployWatchdog action(&factory, &settings);
        EXPECT_EQ(action.getDelay(), minutes(row.delay));
        setDeployment(row.waitAfter, row.progressAfter, row.timeAfter);
        EXPECT_EQ(callsOf(action), Calls{});
        EXPECT_EQ(store->get(completion.wait), row.waitAfter && !row.resets);
        EXPECT_EQ(store->get(settings.installation.inProgress), row.progressAfter && !row.resets);
    }
}

} // namespace
} // namespace vx::tarn
