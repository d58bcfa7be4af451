#include "tarnhd/tarnpatchmanager.h"

#include "fakeagent.h"
#include "support/fakeclock.h"
#include "support/fakesettings.h"
#include "support/logcapture.h"
#include "vxtl/win32exception.h"

#include <gmock/gmock.h>

#include <future>

namespace vx::tarn {
namespace {

using common::Event;
using std::chrono::milliseconds;
using support::EndEvent;
using testing::ElementsAre;

constexpr auto installationKey = L"HKEY_LOCAL_MACHINE\\Software\\Vantorix\\tarn";
constexpr auto eventName = L"Global\\ScanEvent{450C4D2D-AE20-440a-9AAA-F770900831AD}";
constexpr auto timestampKey = L"status.windows.tarnpatch.scanning.last_scanning.timestamp";
constexpr auto waitKey = L"windows.tarnpatch.installation.completion.wait";
const std::wstring remoteKey = L"windows.tarnpatch.remote_operations.";
const std::string plain = "C:\\Tarn\\tarnag.exe|";

class TarnpatchManagerTest : public testing::Test {
protected:
    TarnpatchManagerTest()
    {
        registry::createWin32Registry()
            ->createKey(installationKey)
            ->setStringValue(L"InstallationDirectory", L"C:\\Tarn");
    }
    ~TarnpatchManagerTest() override { registry::createWin32Registry()->deleteTree(installationKey); }

    void make(milliseconds retryPause = milliseconds(0), milliseconds stopTimeout = support::deadline)
    {
        // The thread's shared part is the last to let go of the clock.
        const std::shared_ptr<void> token(nullptr, [this](void*) { released.set_value(); });
        manager = std::make_unique<TarnpatchManager>(
            handle, &factory, retryPause, stopTimeout, [this, token] { return clock.now.load(); });
        startEvent = common::openEvent(0x100002, eventName, false);
    }
    /// Asks for a start and waits for start number `count`: the rounds before it have ended then.
    std::vector<std::string> startAgent(std::size_t count)
    {
        EXPECT_TRUE(startEvent->set());
        return factory.starts.waitFor(count);
    }
    std::int64_t now() { return clock.now / ticksPerSecond; }
    bool isPending() { return sync::waitForSingleObject(*startEvent, 0); }

    support::LogCapture log;
    support::FakeClock clock;
    std::promise<void> released;
    std::shared_ptr<support::FakeSettings> store = std::make_shared<support::FakeSettings>();
    std::shared_ptr<settings::Settings> handle = support::FakeSettings::handle(store);
    support::FakeAgentFactory factory;
    std::shared_ptr<Event> startEvent;
    std::unique_ptr<TarnpatchManager> manager;
};

TEST_F(TarnpatchManagerTest, recordsTheStartTimeOfARunThatEndsWell)
{
    make();
    ASSERT_TRUE(manager->update());
    EXPECT_FALSE(manager->update());
    const std::int64_t started = now();
    factory.script[1].beforeExitCode = [this] {
        EXPECT_TRUE(manager->isAgentRunning());
        clock.advance(std::chrono::hours(1));
    };
    factory.script[2].ended = std::make_shared<EndEvent>();
    store->setInt64Value(remoteKey + L"install_updates.start", 5);
    manager->setStartReason(AgentStartReason::RemoteDeployment);
    startAgent(1);
    EXPECT_THAT(startAgent(2), ElementsAre(plain, plain));
    EXPECT_EQ(store->getInt64Value(timestampKey), started);
    EXPECT_EQ(store->getInt64Value(remoteKey + L"install_updates.ack"), 5);
    factory.script[2].ended->set();
    startAgent(3);
    EXPECT_TRUE(manager->stop());
    EXPECT_FALSE(manager->isAgentRunning());
    EXPECT_FALSE(manager->isRunning());
    EXPECT_EQ(store->getInt64Value(timestampKey), now());
    EXPECT_FALSE(manager->stop());
}

TEST_F(TarnpatchManagerTest, retriesWhileAnotherAgentRunsAndUsesArgumentsOnce)
{
    make(milliseconds(1));
    manager->start();
    manager->setArguments(L"-c complete");
    manager->setStartReason(AgentStartReason::RemoteDeployment);
    manager->setStartReason(AgentStartReason::RemoteScan);
    store->setInt64Value(remoteKey + L"scan_for_updates.start", 3);
    factory.script[1].exitCode = factory.script[2].exitCode = 8;
    factory.script[3].beforeExitCode = [this] {
        // Each attempt answers the request, the busy ones, too.
        EXPECT_EQ(store->getInt64Value(remoteKey + L"scan_for_updates.ack"), 3);
        store->setInt64Value(remoteKey + L"scan_for_updates.start", 4);
    };
    startEvent->set();
    factory.starts.waitFor(3);
    EXPECT_EQ(manager->getStartReason(), AgentStartReason::None);
    EXPECT_THAT(startAgent(4), ElementsAre(plain + "-c complete", plain, plain, plain));
    EXPECT_EQ(store->getInt64Value(remoteKey + L"scan_for_updates.ack"), 4);
    EXPECT_FALSE(store->contains(remoteKey + L"install_updates.ack"));
    EXPECT_EQ(log.count("Scheduling next try to run tarnag.exe ("), 2u) << log.text();
    EXPECT_TRUE(log.has(4, "Scheduling next try to run tarnag.exe (2/3600)")) << log.text();
    factory.script[5].ended = std::make_shared<EndEvent>();
    startAgent(5);
    EXPECT_EQ(log.count("There was no remote operation for tarnag, nothing to update"), 1u) << log.text();
    factory.script[5].ended->set();
}

TEST_F(TarnpatchManagerTest, givesUpAfterTheLastRetry)
{
    make();
    manager->start();
    factory.usual.exitCode = 8;
    factory.script[3601] = {};
    startEvent->set();
    factory.starts.waitFor(3600);
    startAgent(3601);
    EXPECT_EQ(log.count("Scheduling next try to run tarnag.exe ("), 3600u);
    EXPECT_EQ(log.count("Start reason is: 0"), 2u);
}

TEST_F(TarnpatchManagerTest, keepsArgumentsUntilAStartSucceeds)
{
    make();
    manager->start();
    manager->setArguments(L"-c complete");
    const auto key = registry::createWin32Registry()->openKey(installationKey, registry::allAccess);
    key->deleteValue(L"InstallationDirectory");
    factory.script[1].starts = false;
    startEvent->set();
    ASSERT_TRUE(log.waitFor("Failed to start tarnpatch agent (tarnag.exe)")) << log.text();
    EXPECT_TRUE(log.has(2, "Failed to start tarnpatch agent. Exception caught: ")) << log.text();
    key->setStringValue(L"InstallationDirectory", L"C:\\Tarn\\");
    factory.script[2].ended = std::make_shared<EndEvent>();
    startAgent(1);
    EXPECT_THAT(startAgent(2), ElementsAre(plain + "-c complete", plain + "-c complete"));
    EXPECT_TRUE(log.has(2, "Failed to start tarnag.exe process.")) << log.text();
    EXPECT_FALSE(store->contains(timestampKey));
    factory.script[2].ended->set();
}

TEST_F(TarnpatchManagerTest, keepsArgumentsThatComeWhileAnAgentIsStarted)
{
    make();
    manager->start();
    factory.script[1].whileStarting = [this] { manager->setArguments(L"-c complete"); };
    startAgent(1);
    startAgent(2);
    EXPECT_THAT(startAgent(3), ElementsAre(plain, plain + "-c complete", plain));
}

TEST_F(TarnpatchManagerTest, leavesARunningAgentAloneAtStop)
{
    make();
    manager->start();
    factory.script[1].ended = std::make_shared<EndEvent>();
    startAgent(1);
    store->setBoolValue(waitKey, true);
    EXPECT_TRUE(manager->update());
    EXPECT_FALSE(manager->isRunning());
    EXPECT_FALSE(manager->isAgentRunning());
    EXPECT_EQ(store->getInt64Value(timestampKey), now());
    EXPECT_FALSE(log.has(4, "Process finished with return code: ")) << log.text();
    store->setBoolValue(L"status.windows.tarnpatch.enabled", false);
    store->setBoolValue(waitKey, false);
    EXPECT_FALSE(manager->update());
    EXPECT_TRUE(log.has(3, "Action thread doesn't exist")) << log.text();
}

TEST_F(TarnpatchManagerTest, stopsDuringARetryPause)
{
    make(std::chrono::hours(1));
    manager->start();
    factory.usual.exitCode = 8;
    startEvent->set();
    ASSERT_TRUE(log.waitFor("Tarnag agent has been already started.")) << log.text();
    EXPECT_TRUE(manager->stop());
    EXPECT_FALSE(store->contains(timestampKey));
    EXPECT_EQ(factory.starts.size(), 1u);
    EXPECT_TRUE(log.has(4, "Tarnpatch action thread exited")) << log.text();
}

TEST_F(TarnpatchManagerTest, survivesARoundThatThrows)
{
    make();
    manager->start();
    store->fail(timestampKey, std::make_exception_ptr(std::runtime_error("store gone")));
    startAgent(1);
    startAgent(2);
    EXPECT_TRUE(log.has(2, "Exception caught: store gone")) << log.text();
    EXPECT_TRUE(manager->stop());
}

/// An event without a handle.
struct BrokenEvent : Event {
    explicit BrokenEvent(bool r) : Event(std::make_shared<KernelHandle>(nullptr)), resets(r) {}
    bool reset() override
    {
        SetLastError(6);
        return resets;
    }
    const bool resets;
};

TEST_F(TarnpatchManagerTest, needsAStopAfterTheThreadLeftOnItsOwn)
{
    factory.startEvent = std::make_shared<BrokenEvent>(true);
    make();
    EXPECT_TRUE(manager->start());
    ASSERT_TRUE(log.waitFor("Tarnpatch action thread exited")) << log.text();
    EXPECT_TRUE(log.has(2, "Reason: wait failed")) << log.text();
    EXPECT_FALSE(manager->start());
    EXPECT_TRUE(manager->isRunning());
    EXPECT_TRUE(manager->stop());
    EXPECT_TRUE(manager->start());
}

TEST_F(TarnpatchManagerTest, dropsAnEarlierRequestAndDoesNotStartWithoutItsEvents)
{
    factory.stopEvent = std::make_shared<BrokenEvent>(false);
    make();
    startEvent->set();
    EXPECT_FALSE(manager->update());
    EXPECT_TRUE(log.has(2, "Failed to reset stop event. Last error code: 6")) << log.text();
    EXPECT_FALSE(isPending());
    EXPECT_FALSE(manager->isRunning());
    EXPECT_FALSE(manager->stop());
}

class LateThreadTest : public TarnpatchManagerTest {
protected:
    /// Starts the agent and a stop that can't wait for the thread, which hangs until `release`.
    void leaveLateThread()
    {
        make(milliseconds(0), milliseconds(1));
        factory.script[1].beforeExitCode = [this] {
            entered.set_value();
            release.get_future().wait();
        };
        manager->start();
        startAgent(1);
        entered.get_future().wait();
        EXPECT_TRUE(manager->stop());
        EXPECT_TRUE(log.has(3, "TarnpatchManager action thread was not finished during 0 sec.")) << log.text();
    }

    std::promise<void> entered;
    std::promise<void> release;
};

TEST_F(LateThreadTest, isNotCalledBackByTheNextStart)
{
    leaveLateThread();
    EXPECT_TRUE(manager->start());
    release.set_value();
    EXPECT_TRUE(log.waitFor("Tarnpatch action thread exited")) << log.text();
    EXPECT_EQ(startAgent(2).size(), 2u);
}

TEST_F(LateThreadTest, outlivesTheManager)
{
    leaveLateThread();
    manager.reset();
    release.set_value();
    ASSERT_EQ(released.get_future().wait_for(support::deadline), std::future_status::ready);
    EXPECT_EQ(factory.starts.size(), 1u);
}

} // namespace
} // namespace vx::tarn
