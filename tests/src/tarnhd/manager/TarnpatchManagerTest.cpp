#include "tarnhd/manager/tarnpatchmanager.h"

#include "common/event/event.h"
#include "common/factory/commonfactory.h"
#include "common/process/iprocess.h"
#include "support/fakeclock.h"
#include "support/fakesettings.h"
#include "support/gate.h"
#include "support/logcapture.h"
#include "support/record.h"
#include "vxtl/registry.h"

#include <windows.h>

namespace vx::tarn {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;

constexpr auto installationKey = L"HKEY_LOCAL_MACHINE\\Software\\Vantorix\\tarn";
constexpr auto eventName = L"Global\\ScanEvent{450C4D2D-AE20-440a-9AAA-F770900831AD}";
const TarnpatchSettings keys{nullptr};
const TarnpatchStatus statusKeys{nullptr};
const auto& timestamp = statusKeys.scanning.lastScanning.timestamp;
const RemoteOperationsSettings& remote = keys.remoteOperations;
const std::string plain = "C:\\Tarn\\tarnag.exe|";

/// One start of the agent: what it answers and what happens meanwhile.
struct AgentRun {
    std::uint32_t exitCode = 0;
    bool starts = true;
    bool ends = true;
    std::function<void()> whileStarting = [] {};
    std::function<void()> beforeExitCode = [] {};
};

/// A factory whose processes are agents after a script; events and registry are real.
struct FakeAgentFactory : common::CommonFactory {
    std::map<std::size_t, AgentRun> script; ///< by number of the start, from 1; the usual ones for the others
    AgentRun usual;
    support::Record starts; ///< "path|arguments"

    std::shared_ptr<common::IProcess> createProcess() override { return std::make_shared<Agent>(*this); }

    struct Agent : common::IProcess {
        explicit Agent(FakeAgentFactory& f) : factory(f) {}
        bool start(const std::wstring&, unsigned long, process::Redirect, void*) override { return false; }
        bool start(const std::wstring& path, const std::wstring& arguments, const process::Credentials&) override
        {
            run = factory.script.try_emplace(factory.starts.size() + 1, factory.usual).first->second;
            handle = std::make_shared<KernelHandle>(CreateEventW(nullptr, TRUE, run.ends, nullptr));
            factory.starts.add(
                std::string(path.begin(), path.end()) + "|" + std::string(arguments.begin(), arguments.end()));
            run.whileStarting();
            return run.starts;
        }
        void wait() override {}
        std::uint32_t getReturnCode() override
        {
            run.beforeExitCode();
            return run.exitCode;
        }
        const SharedHandle& getHandle() override { return handle; }
        FakeAgentFactory& factory;
        AgentRun run;
        SharedHandle handle;
    };
};

/// Does something once, between the two reads of an update.
struct InterruptedSettings : support::FakeSettings {
    bool getBoolValue(Name name) override
    {
        const bool value = FakeSettings::getBoolValue(name);
        if (name == statusKeys.enabled.key() && interruption)
            std::exchange(interruption, {})();
        return value;
    }
    std::function<void()> interruption;
};

class TarnpatchManagerTest : public testing::Test {
protected:
    TarnpatchManagerTest() { key->setStringValue(L"InstallationDirectory", L"C:\\Tarn"); }
    ~TarnpatchManagerTest() override
    {
        manager.reset();
        EXPECT_EQ(gone.wait_for(support::deadline), std::future_status::ready);
        registry::createWin32Registry()->deleteTree(installationKey);
    }

    bool start(milliseconds retryPause = milliseconds(0), milliseconds stopTimeout = support::deadline)
    {
        // The thread's shared part is the last to let go of the clock.
        const std::shared_ptr<void> token(nullptr, [this](void*) { released.set_value(); });
        manager = std::make_unique<TarnpatchManager>(support::FakeSettings::handle(store), &factory, retryPause,
            stopTimeout, [this, token] { return clock.now.load(); });
        startEvent = common::openEvent(0x100002, eventName, false);
        startEvent->set(); // dropped at the start
        return manager->update();
    }
    /// Asks for a start and waits for start number `count`: the rounds before it have ended then.
    std::vector<std::string> startAgent(std::size_t count)
    {
        EXPECT_TRUE(startEvent->set());
        return factory.starts.waitFor(count);
    }
    /// A stop that can't wait for the thread, which hangs until `release`.
    void leaveLateThread()
    {
        factory.script[1].beforeExitCode = [this] { gate.pass(); };
        start(milliseconds(0), milliseconds(1));
        startAgent(1);
        gate.waitUntilEntered();
        EXPECT_TRUE(manager->stop());
        EXPECT_TRUE(log.has(3, "TarnpatchManager action thread was not finished during 0 sec.")) << log.text();
    }
    std::int64_t now() { return clock.now / ticksPerSecond; }

    support::LogCapture log;
    support::FakeClock clock;
    support::Gate gate;
    std::promise<void> released;
    std::future<void> gone = released.get_future();
    std::shared_ptr<registry::RegistryKey> key = registry::createWin32Registry()->createKey(installationKey);
    std::shared_ptr<support::FakeSettings> store = std::make_shared<support::FakeSettings>();
    FakeAgentFactory factory;
    std::shared_ptr<common::Event> startEvent;
    std::unique_ptr<TarnpatchManager> manager;
};

TEST_F(TarnpatchManagerTest, recordsTheStartTimeOfARunThatEndsWellOrGoesOn)
{
    ASSERT_TRUE(start());
    EXPECT_FALSE(manager->update());
    const std::int64_t started = now();
    factory.script[1].beforeExitCode = [this] {
        EXPECT_TRUE(manager->isAgentRunning());
        clock.advance(std::chrono::hours(1));
    };
    factory.script[2].ends = false;
    startAgent(1);
    EXPECT_THAT(startAgent(2), ElementsAre(plain, plain));
    EXPECT_EQ(store->get(timestamp), started);
    store->set(keys.installation.completion.wait, true);
    EXPECT_TRUE(manager->update());
    EXPECT_FALSE(manager->isRunning());
    EXPECT_FALSE(manager->isAgentRunning());
    EXPECT_EQ(store->get(timestamp), now());
    EXPECT_FALSE(manager->update());
}

TEST_F(TarnpatchManagerTest, answersTheLaterReasonAtEachAttemptAndDropsItThen)
{
    start();
    manager->setStartReason(AgentStartReason::RemoteDeployment);
    manager->setStartReason(AgentStartReason::RemoteScan);
    store->set(remote.scanForUpdates.start, 3);
    factory.script[1].exitCode = 8;
    factory.script[2].beforeExitCode = [this] {
        EXPECT_EQ(store->get(remote.scanForUpdates.ack), 3);
        store->set(remote.scanForUpdates.start, 4);
    };
    startAgent(2);
    startAgent(3);
    EXPECT_EQ(store->get(remote.scanForUpdates.ack), 4);
    EXPECT_TRUE(store->get(remote.installUpdates.ack).is_null());
    EXPECT_EQ(log.count("Start reason is: 1"), 1u);
}

TEST_F(TarnpatchManagerTest, givesUpAfterTheLastRetry)
{
    start();
    factory.usual.exitCode = 8;
    // The next start is one of the next round.
    factory.script[3601].whileStarting = [this] { EXPECT_EQ(log.count("Start reason is: 0"), 2u); };
    startAgent(3600);
    startAgent(3601);
    EXPECT_EQ(log.count("Scheduling next try to run tarnag.exe ("), 3600u);
}

TEST_F(TarnpatchManagerTest, keepsArgumentsUntilAStartThatBeganWithThemSucceeds)
{
    start();
    manager->setArguments(L"-c complete");
    key->deleteValue(L"InstallationDirectory");
    factory.script[1].starts = false;
    factory.script[2].whileStarting = [this] { manager->setArguments(L"later"); };
    startEvent->set();
    ASSERT_TRUE(log.waitFor("Failed to start tarnpatch agent. Exception caught: ")) << log.text();
    key->setStringValue(L"InstallationDirectory", L"C:\\Tarn\\");
    for (const std::size_t count : {1, 2, 3})
        startAgent(count);
    EXPECT_THAT(startAgent(4), ElementsAre(plain + "-c complete", plain + "-c complete", plain + "later", plain));
}

TEST_F(TarnpatchManagerTest, stopsDuringARetryPause)
{
    start(std::chrono::hours(1));
    factory.usual.exitCode = 8;
    startEvent->set();
    ASSERT_TRUE(log.waitFor("Tarnag agent has been already started.")) << log.text();
    EXPECT_TRUE(manager->stop());
    EXPECT_TRUE(store->get(timestamp).is_null());
    EXPECT_EQ(factory.starts.size(), 1u);
}

TEST_F(TarnpatchManagerTest, endsAsTheLastChangeSaysWhenUpdatesOverlap)
{
    const auto interrupted = std::make_shared<InterruptedSettings>();
    std::future<bool> other;
    interrupted->interruption = [&] {
        store->set(statusKeys.enabled, false);
        other = std::async(std::launch::async, [&] { return manager->update(); });
        EXPECT_EQ(other.wait_for(support::moment), std::future_status::timeout);
    };
    store = interrupted;
    store->set(statusKeys.enabled, true);
    EXPECT_TRUE(start());
    EXPECT_TRUE(other.get());
    EXPECT_FALSE(manager->isRunning());
}

TEST_F(TarnpatchManagerTest, survivesARoundThatThrows)
{
    start();
    store->breakDown(timestamp.key());
    startAgent(1);
    // For any number of starts during a run there is one more.
    factory.script[2].beforeExitCode = [this] { startEvent->set(), startEvent->set(); };
    startAgent(3);
    EXPECT_EQ(startAgent(4).size(), 4u);
    EXPECT_TRUE(log.has(2, "Exception caught: store is down")) << log.text();
}

TEST_F(TarnpatchManagerTest, doesNotCallALateThreadBackByTheNextStart)
{
    leaveLateThread();
    EXPECT_TRUE(manager->start());
    gate.open();
    EXPECT_TRUE(log.waitFor("Tarnpatch action thread exited")) << log.text();
    EXPECT_EQ(startAgent(2).size(), 2u);
}

TEST_F(TarnpatchManagerTest, isOutlivedByALateThread)
{
    leaveLateThread();
    manager.reset();
    gate.open();
    ASSERT_EQ(gone.wait_for(support::deadline), std::future_status::ready);
    EXPECT_EQ(factory.starts.size(), 1u);
}

} // namespace
} // namespace vx::tarn
