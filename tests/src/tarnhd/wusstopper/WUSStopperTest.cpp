#include "tarnhd/wusstopper/wusstopper.h"

#include "common/event/event.h"
#include "common/factory/commonfactory.h"
#include "common/reboot/icomputerrebooter.h"
#include "common/registrykeynotifier/registrykeynotifier.h"
#include "common/serviceproxy/serviceproxy.h"
#include "common/utils/timetext.h"
#include "support/fakeclock.h"
#include "support/fakesettings.h"
#include "support/logcapture.h"
#include "tarnhd/wusstopper/rebootrequest.h"
#include "tarnhd/wusstopper/triggerkey.h"
#include "vxtl/registry.h"
#include "vxtl/str.h"

#include <windows.h>

namespace vx::tarn {
namespace {

using namespace std::chrono_literals;
using common::ServiceOperation;

const TarnpatchSettings keys{nullptr};
const std::wstring askUserKey = keys.installation.reboot.askUser.key();
constexpr auto vantorixKey = L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantorix";
constexpr std::int64_t created = 4'000'000'000, deadline = created + 24 * 3600; ///< in Unix seconds

/// Is itself the service, the computer and the watch that it gives out: the system's own, but for what a test sets.
struct FakeSystem : common::CommonFactory,
                    common::ServiceProxy,
                    common::IComputerRebooter,
                    common::RegistryKeyNotifier {
    FakeSystem() : ServiceProxy({}) {}
    std::shared_ptr<common::IService> createServiceProxy(const std::wstring& name) override
    {
        EXPECT_EQ(name, L"wuauserv");
        return {notOwned, this};
    }
    std::shared_ptr<common::IComputerRebooter> createComputerRebooter() override { return {notOwned, this}; }
    std::shared_ptr<common::IRegistryKeyNotifier> createRegistryKeyNotifier() override
    {
        ++watches;
        return {notOwned, this};
    }
    ServiceState getState() override { return state; }
    ServiceOperation beginStop(std::chrono::milliseconds timeout, common::ServiceWait wait) override
    {
        EXPECT_EQ(timeout, 10s);
        EXPECT_EQ(wait, common::ServiceWait::Yes);
        return onStop();
    }
    bool initiateReboot() override { return ++rebootsAsked, reboots; }
    void notifyChangeKeyValue(unsigned long filter, const IWaitable& event) override
    {
        ++armed;
        onArm ? onArm(event) : RegistryKeyNotifier::notifyChangeKeyValue(filter, event);
    }

    ServiceState state = ServiceState::Stopped;
    std::function<ServiceOperation()> onStop;
    bool reboots = false; ///< whether the computer obeys
    int rebootsAsked = 0, watches = 0, armed = 0;
    std::function<void(const IWaitable& event)> onArm = [](const IWaitable& event) { SetEvent(event.getHandle()); };
    const std::shared_ptr<void> notOwned;
};

class WUSStopperTest : public testing::Test {
protected:
    WUSStopperTest()
    {
        removeKey();
        registry->createKey(vantorixKey);
        store->setBoolValue(askUserKey, false);
        store->setInt64Value(keys.installation.reboot.forceInSeconds.key(), -1);
        store->setInt32Value(keys.installation.reboot.forceIn.key(), 24);
        clock.now = deadline * ticksPerSecond;
    }
    ~WUSStopperTest() override
    {
        stopper.reset();
        removeKey();
    }
    void removeKey()
    {
        if (registry->doesKeyExist(triggerKey))
            registry->deleteTree(triggerKey);
    }
    void makeKey(std::int64_t time = created)
    {
        registry->createKey(triggerKey)->setInt64Value(triggerTimeValue, time);
    }
    bool round()
    {
        if (!poll)
            poll.emplace(support::FakeSettings::handle(store), &system, options);
        return poll->round({*stopEvent, *registryEvent});
    }
    WUSStopper& thread()
    {
        options.pollPeriod = 120s;
        return stopper.emplace(support::FakeSettings::handle(store), &system, options);
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
    std::optional<WUSStopper> stopper;
};

TEST_F(WUSStopperTest, stopsTheServiceThenWaitsThenRebootsUntilTheSystemObeys)
{
    makeKey();
    system.state = ServiceState::Running;
    system.onStop = [] { return ServiceOperation([](auto) { return true; }); };
    EXPECT_TRUE(round()) << "in time at the deadline itself";
    const auto text = [](std::int64_t time) { return str::toUtf8(common::utils::timeToString(time)); };
    const std::string times = text(deadline) + " now " + text(deadline);
    EXPECT_EQ(log.text(), "WUS stopper trigger key found as: 1\nWill try to stop WUS\nTime to poll WUS status.\n"
                          "force reboot ask: 0 in 86400 hours\nreboot initiated " +
                              text(created) + "\nreboot dealine " + times + " is time to reboot 0\n");
    clock.now += 1;
    system.state = ServiceState::StopPending;
    EXPECT_TRUE(round());
    system.reboots = true;
    EXPECT_FALSE(round());
    EXPECT_EQ(system.rebootsAsked, 2);
    EXPECT_EQ(log.count("WUS not running"), 2u);
    EXPECT_TRUE(log.has(4, "Now time to reboot: dealine " + times)) << log.text();
    EXPECT_EQ(system.armed, 0);
}

TEST_F(WUSStopperTest, goesOnStoppingTheServiceButRebootsNeitherPastTheUserNorWithoutTheKey)
{
    makeKey();
    clock.now += ticksPerSecond;
    store->setBoolValue(askUserKey, true);
    EXPECT_TRUE(round());
    EXPECT_EQ(log.count("reboot initiated"), 0u) << "nobody reads the key";
    store->setBoolValue(askUserKey, false);
    removeKey();
    EXPECT_TRUE(round());
    EXPECT_EQ(log.count("WUS not running"), 2u);
    EXPECT_EQ(log.count("Exception occurred. "), 1u) << log.text();
    makeKey(0);
    EXPECT_TRUE(round());
    EXPECT_EQ(system.rebootsAsked, 0);
}

TEST_F(WUSStopperTest, rebootsBehindTheDeadlineOnlyAndNeverForARequestThatCannotBeRead)
{
    const auto key = [&] { return registry->createKey(triggerKey); };
    const std::function<void()> noTime = [] {}, text = [&] { key()->setStringValue(triggerTimeValue, L"1"); },
                                number = [&] { key()->setInt32Value(triggerTimeValue, 1); };
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    const struct {
        std::int64_t forceInSeconds, created;
        bool isDue;
        std::function<void()> write = {};
    } rows[] = {{0, created, false}, {0, created - 1, true}, {-1, created - 24 * 3600 - 1, true},
        {-1, created - 24 * 3600, false}, {-2, created, true}, {0, created + 1, false}, {most, 1, false},
        {-most, 1, true}, {-2, 0, false}, {-2, 1, false, noTime}, {-2, 1, false, text}, {-2, 1, false, number}};
    clock.now = created * ticksPerSecond;
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.forceInSeconds << ' ' << row.created);
        store->setInt64Value(keys.installation.reboot.forceInSeconds.key(), row.forceInSeconds);
        removeKey();
        key();
        system.rebootsAsked = 0;
        row.write ? row.write() : makeKey(row.created);
        EXPECT_TRUE(round());
        EXPECT_EQ(system.rebootsAsked, row.isDue);
    }
}

TEST_F(WUSStopperTest, armsTheWatchAnewBeforeEachWaitAndPollsWhereThatFails)
{
    EXPECT_TRUE(round());
    EXPECT_TRUE(round());
    EXPECT_EQ(system.armed, 2);
    EXPECT_EQ(system.watches, 1);
    EXPECT_EQ(log.count("Registry changed, check if WUS should be stopped"), 2u) << log.text();
    EXPECT_EQ(log.count("force reboot ask: "), 2u);
    store->breakDown(askUserKey);
    const auto arm = std::exchange(system.onArm, [](const IWaitable&) { throw std::runtime_error("no watch"); });
    EXPECT_TRUE(round());
    EXPECT_EQ(log.count("Exception occurred. no watch"), 1u) << log.text();
    EXPECT_EQ(log.count("Time to poll WUS status."), 1u);
    EXPECT_EQ(log.count("Exception occurred. store is down"), 1u);
    EXPECT_EQ(system.watches, 2) << "a key that was deleted needs a new watch";
    stopEvent->set();
    EXPECT_FALSE(round());
    EXPECT_EQ(log.count("Stop signalled, exiting"), 1u);
    system.onArm = arm;
    EXPECT_FALSE(round()) << "the stop comes before a change";
    EXPECT_TRUE(log.has(4, "Thread stop event signaled"));
}

TEST_F(WUSStopperTest, rebootsAlthoughTheServiceDoesNotStop)
{
    const struct {
        const char* error;
        std::function<ServiceOperation()> onStop;
    } rows[] = {
        {"Error: failed to stop WUS service in 10 seconds",
            [] { return ServiceOperation([](auto) { return false; }); }},
        {"refused", []() -> ServiceOperation { throw std::runtime_error("refused"); }},
        {"Subsequent call to wait", [] { return ServiceOperation(); }},
    };
    makeKey();
    clock.now += ticksPerSecond;
    system.state = ServiceState::Running;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.error);
        system.onStop = row.onStop;
        system.rebootsAsked = 0;
        EXPECT_TRUE(round());
        EXPECT_EQ(log.count(row.error), 1u) << log.text();
        EXPECT_EQ(system.rebootsAsked, 1);
    }
}

TEST_F(WUSStopperTest, findsAKeyThatCameWhileTheWatchWasArmed)
{
    system.onArm = [this](const IWaitable&) { makeKey(); };
    thread().start();
    EXPECT_TRUE(log.waitFor("WUS not running")) << log.text();
}

TEST_F(WUSStopperTest, aStopEndsTheWaitForTheService)
{
    makeKey();
    system.state = ServiceState::Running;
    bool cancelled = false;
    system.onStop = [&] {
        return ServiceOperation([&](const IWaitable* cancel) {
            cancelled = sync::waitForSingleObject(*cancel, 60'000);
            return false;
        });
    };
    thread().start();
    EXPECT_TRUE(log.waitFor("Will try to stop WUS")) << log.text();
    stopper->stop();
    EXPECT_TRUE(cancelled);
    EXPECT_EQ(log.count("Error: failed"), 0u) << log.text();
}

TEST_F(WUSStopperTest, cleansTheFlagUp)
{
    EXPECT_TRUE(thread().cleanupStopFlag());
    makeKey();
    EXPECT_TRUE(stopper->cleanupStopFlag());
    EXPECT_FALSE(registry->doesKeyExist(triggerKey));
    registry->createKey(triggerKey + std::wstring(L"\\below"));
    EXPECT_FALSE(stopper->cleanupStopFlag());
    EXPECT_EQ(log.count("Exception occurred. Type: Win32Exception"), 1u) << log.text();
}

} // namespace
} // namespace vx::tarn
