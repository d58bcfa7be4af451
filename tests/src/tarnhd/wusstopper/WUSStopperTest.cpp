#include "tarnhd/wusstopper/wusstopper.h"

#include "common/event/event.h"
#include "common/utils/timetext.h"
#include "fakesystem.h"
#include "support/fakeclock.h"
#include "support/fakesettings.h"
#include "support/logcapture.h"
#include "support/record.h"
#include "tarnhd/wusstopper/triggerkey.h"
#include "vxtl/registry.h"

namespace vx::tarn {
namespace {

using namespace std::chrono_literals;
using common::ServiceOperation;
using testing::ElementsAre;

const TarnpatchSettings keys{nullptr};
const std::wstring askUserKey = keys.installation.reboot.askUser.key();
const std::wstring forceKey = keys.installation.reboot.forceInSeconds.key();
constexpr auto vantorixKey = L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantorix";

class WUSStopperTest : public testing::Test {
protected:
    WUSStopperTest()
    {
        removeKey();
        store->setBoolValue(askUserKey, false);
        store->setInt64Value(forceKey, -1);
        store->setInt32Value(keys.installation.reboot.forceIn.key(), 24);
        clock.now = 1'700'086'400 * ticksPerSecond; // the deadline of a key that was made a day before
    }
    ~WUSStopperTest() override { removeKey(); }
    void removeKey()
    {
        if (registry->doesKeyExist(triggerKey))
            registry->deleteTree(triggerKey);
    }
    void makeKey(std::int64_t time = 1'700'000'000)
    {
        registry->createKey(triggerKey)->setInt64Value(triggerTimeValue, time);
    }
    bool round()
    {
        if (!poll)
            poll.emplace(support::FakeSettings::handle(store), &system, options);
        return poll->round({*stopEvent, *registryEvent});
    }
    std::vector<std::string> logged()
    {
        std::vector<std::string> texts;
        for (const auto& line : log.lines())
            texts.push_back(line.text.substr(line.text.find_first_not_of(' ')));
        return texts;
    }

    support::FakeClock clock;
    std::shared_ptr<support::FakeSettings> store = std::make_shared<support::FakeSettings>();
    std::shared_ptr<registry::Registry> registry = registry::createWin32Registry();
    FakeSystem system;
    WUSStopperOptions options{0ms, 10s, clock.function()};
    std::shared_ptr<common::Event> stopEvent = common::Event::createManualResetEvent({}, false);
    std::shared_ptr<common::Event> registryEvent = common::Event::createAutoResetEvent({}, false);
    support::LogCapture log; // of what comes behind the setting up
    std::optional<WUSPoll> poll;
};

TEST_F(WUSStopperTest, stopsTheServiceThenWaitsThenRebootsUntilTheSystemObeys)
{
    makeKey();
    system.state = ServiceState::Running;
    EXPECT_TRUE(round()) << "in time at the deadline itself";
    const auto text = [](std::int64_t time) {
        const std::wstring wide = common::utils::timeToString(time);
        return std::string(wide.begin(), wide.end());
    };
    const std::string times = text(1'700'086'400) + " now " + text(1'700'086'400);
    EXPECT_THAT(
        logged(), ElementsAre("WUS stopper trigger key found as: 1", "Will try to stop WUS", "Time to poll WUS status.",
                      "force reboot ask: 0 in 86400 hours", "reboot initiated " + text(1'700'000'000),
                      "reboot dealine " + times + " is time to reboot 0"));
    clock.now += 1;
    system.state = ServiceState::Stopped;
    EXPECT_TRUE(round());
    system.reboots = true;
    EXPECT_FALSE(round());
    EXPECT_EQ(system.rebootsAsked, 2);
    EXPECT_EQ(log.count("WUS not running"), 2u);
    EXPECT_TRUE(log.has(4, "Now time to reboot: dealine " + times)) << log.text();
    EXPECT_TRUE(log.has(4, "Performing system to reboot"));
    EXPECT_EQ(log.count("trigger key found as"), 1u);
    EXPECT_EQ(system.armed, 0);
}

TEST_F(WUSStopperTest, goesOnStoppingTheServiceWhenTheKeyIsGoneAndRebootsNoMore)
{
    makeKey();
    EXPECT_TRUE(round());
    removeKey();
    clock.now += ticksPerSecond;
    EXPECT_TRUE(round());
    EXPECT_EQ(log.count("WUS not running"), 2u);
    EXPECT_EQ(log.count("Exception occurred. "), 1u) << log.text();
    makeKey(0);
    EXPECT_TRUE(round());
    EXPECT_EQ(system.rebootsAsked, 0);
}

TEST_F(WUSStopperTest, readsNoKeyWhenTheUserIsToBeAsked)
{
    makeKey();
    clock.now += ticksPerSecond;
    store->setBoolValue(askUserKey, true);
    store->setInt64Value(forceKey, 0);
    EXPECT_TRUE(round());
    EXPECT_TRUE(log.has(5, "force reboot ask: 1 in 0 hours")) << log.text();
    EXPECT_EQ(log.count("reboot initiated"), 0u);
    EXPECT_EQ(system.rebootsAsked, 0);
}

TEST_F(WUSStopperTest, armsTheWatchAnewBeforeEachWait)
{
    EXPECT_TRUE(round());
    EXPECT_TRUE(round());
    EXPECT_EQ(system.armed, 2);
    EXPECT_EQ(system.watches, 1);
    EXPECT_EQ(log.count("Registry changed, check if WUS should be stopped"), 2u) << log.text();
    EXPECT_EQ(log.count("force reboot ask: "), 2u);
    stopEvent->set();
    EXPECT_FALSE(round()) << "the stop comes before a change";
    EXPECT_TRUE(log.has(4, "Thread stop event signaled"));
    EXPECT_EQ(log.count("force reboot ask: "), 2u);
}

TEST_F(WUSStopperTest, saysHowTheStopOfTheServiceEnded)
{
    const struct {
        const char* trace;
        std::function<ServiceOperation()> onStop;
        const char* error; ///< none when empty
    } rows[] = {
        {"stopped", [] { return ServiceOperation([](auto) { return true; }); }, ""},
        {"too slow", [] { return ServiceOperation([](auto) { return false; }); },
            "Error: failed to stop WUS service in 10 seconds"},
        {"nothing to wait for", [] { return ServiceOperation(); }, "Subsequent call to wait"},
        {"refused", []() -> ServiceOperation { throw std::runtime_error("refused"); }, "refused"},
    };
    makeKey();
    clock.now += ticksPerSecond;
    system.state = ServiceState::Running;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.trace);
        const auto errors = [&] {
            return *row.error ? log.count(row.error) : log.count("Error: ") + log.count("refused");
        };
        system.onStop = row.onStop;
        system.rebootsAsked = 0;
        EXPECT_TRUE(round());
        EXPECT_EQ(errors(), *row.error ? 1u : 0u) << log.text();
        EXPECT_EQ(system.rebootsAsked, 1) << "whatever the service does";
    }
}

TEST_F(WUSStopperTest, goesOnAfterThePollPeriodWhenAStepFails)
{
    system.onArm = [](const IWaitable&) { throw std::runtime_error("no watch"); };
    store->breakDown(askUserKey);
    EXPECT_TRUE(round());
    EXPECT_EQ(log.count("Exception occurred. no watch"), 1u) << log.text();
    EXPECT_EQ(log.count("Time to poll WUS status."), 1u);
    EXPECT_EQ(log.count("Exception occurred. store is down"), 1u);
    EXPECT_EQ(system.watches, 2) << "a key that was deleted needs a new watch";
    stopEvent->set();
    EXPECT_FALSE(round());
    EXPECT_EQ(log.count("Stop signalled, exiting"), 1u);
}

TEST_F(WUSStopperTest, findsAKeyThatCameWhileTheWatchWasArmed)
{
    system.onArm = [this](const IWaitable&) { makeKey(); };
    options.pollPeriod = support::deadline * 2;
    WUSStopper stopper(support::FakeSettings::handle(store), &system, options);
    stopper.start();
    EXPECT_TRUE(log.waitFor("WUS not running")) << log.text();
    stopper.stop();
    EXPECT_GE(log.count("Stop signalled, exiting"), 1u);
    EXPECT_THAT(logged(), testing::Contains("WUS poll thread exited"));
}

TEST_F(WUSStopperTest, seesTheKeyThatSomebodyMakes)
{
    registry->createKey(vantorixKey);
    system.watchIsReal = true;
    options.pollPeriod = support::deadline * 2;
    WUSStopper stopper(support::FakeSettings::handle(store), &system, options);
    stopper.start();
    ASSERT_TRUE(log.waitFor("Prepared registry change notification handle")) << log.text();
    makeKey();
    EXPECT_TRUE(log.waitFor("WUS not running")) << log.text();
    stopper.stop();
    stopper.stop();
    EXPECT_EQ(log.count("WUS stopper started"), 1u);
    EXPECT_EQ(log.count("WUS stopper stopped"), 2u);
    EXPECT_EQ(log.count("WUS poll thread exited"), 1u);
}

TEST_F(WUSStopperTest, aStopEndsTheWaitForTheService)
{
    makeKey();
    system.state = ServiceState::Running;
    support::Record entered;
    bool cancelled = false;
    system.onStop = [&] {
        return ServiceOperation([&](const IWaitable* cancel) {
            entered.add("");
            cancelled = sync::waitForSingleObject(*cancel, 60'000);
            return false;
        });
    };
    WUSStopper stopper(support::FakeSettings::handle(store), &system, options);
    stopper.start();
    entered.waitFor(1);
    stopper.stop();
    EXPECT_TRUE(cancelled);
    EXPECT_EQ(log.count("Error: failed"), 0u) << log.text();
}

TEST_F(WUSStopperTest, cleansTheFlagUp)
{
    WUSStopper stopper(support::FakeSettings::handle(store), &system, options);
    EXPECT_TRUE(stopper.cleanupStopFlag());
    makeKey();
    EXPECT_TRUE(stopper.cleanupStopFlag());
    EXPECT_FALSE(registry->doesKeyExist(triggerKey));
    makeKey();
    registry->createKey(triggerKey + std::wstring(L"\\below"));
    EXPECT_FALSE(stopper.cleanupStopFlag());
    EXPECT_EQ(log.count("Exception occurred. Type: Win32Exception"), 1u) << log.text();
}

} // namespace
} // namespace vx::tarn
