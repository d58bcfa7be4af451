#include "tarnhd/handler/tarnhandler.h"

#include "common/factory/commonfactory.h"
#include "common/globalatom/iglobalatom.h"
#include "common/patchstorage/ipatchstorage.h"
#include "common/settings/hostsettings.h"
#include "common/settings/keylist.h"
#include "common/settings/tarnpatchsettings.h"
#include "common/settings/tarnpatchstatus.h"
#include "common/updaterlauncher/iupdaterlauncher.h"
#include "common/windowsupdates/iwindowsupdates.h"
#include "logging/logstream.h"
#include "support/fakesettings.h"
#include "support/gate.h"
#include "support/logcapture.h"
#include "support/record.h"
#include "tarnhd/autoinstallation/autoinstallation.h"
#include "tarnhd/factory/tarnhdfactory.h"
#include "tarnhd/manager/tarnpatchmanager.h"
#include "tarnhd/wusstopper/triggerkey.h"
#include "vxtl/registry.h"
#include "vxtl/str.h"

#include <map>
#include <set>

namespace vx::tarn {
namespace {

using Entries = std::vector<std::string>;

const TarnpatchSettings keys{nullptr};
const TarnpatchStatus statusKeys{nullptr};
const HostSettings hostKeys{nullptr};
const RemoteInstallationSettings& install = keys.remoteOperations.installUpdates;

/// It is itself the launcher, the automatic updates and the atom that it gives out. Of the system are the events and
/// the patch storage.
struct FakeCommonFactory : common::CommonFactory,
                           common::IUpdaterLauncher,
                           common::IWindowsUpdates,
                           common::IGlobalAtom {
    std::shared_ptr<support::FakeSettings> store = std::make_shared<support::FakeSettings>();
    std::atomic<int> storeError = 0; ///< what opening the store answers, until the retry callable gives up
    int goodOpenings = 0;            ///< that many succeed all the same
    bool atomExists = true;
    support::Record done;
    support::Record taskUpdates; ///< of the scheduled task, by the status that it is to follow

    std::shared_ptr<settings::Settings> createSettings(const RetryCallback& retry) override
    {
        for (const bool isGood = goodOpenings-- > 0; const int error = isGood ? 0 : storeError.load();) {
            logging::LogStream(logging::Level::Warning) << "no store";
            if (!retry(static_cast<meridia::QrlMeridiaError_enum>(error)))
                throw std::runtime_error("store unreachable");
        }
        return std::make_shared<settings::Settings>(m_storeWrapper(store));
    }
    using CommonFactory::createSettings;
    std::shared_ptr<common::IUpdaterLauncher> createUpdaterLauncher() override { return {notOwned, this}; }
    void startScan() override { done.add("scan"); }
    void startScanIfOlderThan(std::int64_t) override { done.add("tick"); }
    void startScanAt(std::int64_t) override {}

    std::shared_ptr<common::IWindowsUpdates> createWindowsUpdates() override { return {notOwned, this}; }
    common::ExitStatus pause() override { return common::exitstatus::unknownStatus; }
    common::ExitStatus resume() override { return common::exitstatus::unknownStatus; }
    common::ExitStatus restore() override { return common::exitstatus::unknownStatus; }
    Ticks getLastInstallationDate() override { return common::neverInstalled; }

    std::shared_ptr<common::IGlobalAtom> createGlobalAtom(const std::wstring&) override { return {notOwned, this}; }
    bool exists() override { return atomExists; }
    bool create() override { return atomExists = true; }

    const std::shared_ptr<void> notOwned;
};

/// A manager without a thread.
struct FakeManager : TarnpatchManager {
    FakeManager(const std::shared_ptr<settings::Settings>& settings, FakeCommonFactory& common)
        : TarnpatchManager(settings, &common, std::chrono::seconds(1)), done(common.done)
    {}
    bool update() override
    {
        done.add("update");
        whileUpdating();
        return running = true;
    }
    bool stop() override { return running.exchange(false); }
    bool isRunning() const override { return running; }
    /// The first look fails, at the second one an agent runs.
    bool isAgentRunning() const override
    {
        if (++looks == 1)
            throw std::runtime_error("no look");
        return looks == 2;
    }
    void setArguments(const std::wstring& arguments) override
    {
        done.add("arguments " + std::string(arguments.begin(), arguments.end()));
    }
    void setStartReason(AgentStartReason reason) override
    {
        done.add("reason " + std::to_string(static_cast<int>(reason)));
    }
    support::Record& done;
    std::atomic<bool> running{false};
    std::function<void()> whileUpdating = [] {};
    mutable int looks = 0;
};

struct FakeAutoInstallation : AutoInstallation {
    FakeAutoInstallation(const std::shared_ptr<settings::Settings>& settings, support::Record& u)
        : AutoInstallation(L"", nullptr, TarnpatchSettings(settings), TarnpatchStatus(settings), nullptr),
          status(settings), updates(u)
    {}
    bool update() override
    {
        updates.add(status.enabled() ? "on" : "off");
        return false;
    }
    const TarnpatchStatus status;
    support::Record& updates;
};

struct FakeTarnhdFactory : TarnhdFactory {
    explicit FakeTarnhdFactory(FakeCommonFactory& c) : TarnhdFactory(&c), common(c) {}
    std::shared_ptr<TarnpatchManager> createTarnpatchManager(
        const std::shared_ptr<settings::Settings>& settings) override
    {
        return manager = std::make_shared<FakeManager>(settings, common);
    }
    std::shared_ptr<AutoInstallation> createAutoInstallation(
        const std::shared_ptr<settings::Settings>& settings) override
    {
        return std::make_shared<FakeAutoInstallation>(settings, common.taskUpdates);
    }
    FakeCommonFactory& common;
    std::shared_ptr<FakeManager> manager;
};

/// A handler over fakes, on a computer that has run it since the boot.
struct FakedHandler {
    FakedHandler()
    {
        storage->clear();
        store.set(hostKeys.lastSuccessfulUpdateTimestamp, 1);
        store.set(statusKeys.enabled, true);
    }
    ~FakedHandler()
    {
        handler.stop();
        expectEnd();
        storage->clear();
    }
    void begin()
    {
        ended = std::async(std::launch::async, [this] { handler.run(); });
    }
    /// Until the scheduler's first tick: status and subscriptions are done by then.
    void beginAndWait()
    {
        begin();
        EXPECT_EQ(common->done.waitFor(2), (Entries{"update", "tick"}));
    }
    void expectEnd()
    {
        if (!ended.valid())
            return;
        ASSERT_EQ(ended.wait_for(support::deadline), std::future_status::ready);
        ended.get();
    }
    /// What a change of the key makes it do, of which at least `count` entries.
    template <typename Row>
    Entries doneAt(const Row& key, const nlohmann::json& value, std::size_t count = 0)
    {
        const std::size_t before = common->done.size();
        store.set(key, value);
        return doneSince(before, count);
    }
    Entries doneSince(std::size_t before, std::size_t count) const
    {
        const Entries entries = common->done.waitFor(before + count);
        return {entries.begin() + static_cast<std::ptrdiff_t>(before), entries.end()};
    }

    support::LogCapture log;
    std::shared_ptr<FakeCommonFactory> common = std::make_shared<FakeCommonFactory>();
    std::shared_ptr<FakeTarnhdFactory> factory = std::make_shared<FakeTarnhdFactory>(*common);
    std::shared_ptr<common::IPatchStorage> storage = common->createPatchStorage();
    support::FakeSettings& store = *common->store;
    TarnHandler handler{common, factory};
    std::future<void> ended;
};

class TarnHandlerTest : public testing::Test, protected FakedHandler {};

TEST_F(TarnHandlerTest, waitsForTheProfileThroughFailuresAndThenDoesTheFirstRunsWork)
{
    const auto& restartNeeded = statusKeys.installation.lastInstallation.restartComputerNeeded;
    const auto& profile = hostKeys.lastSuccessfulUpdateTimestamp;
    const auto registry = registry::createWin32Registry();
    registry->createKey(triggerKey);
    common->atomExists = false;
    store.set(restartNeeded, true);
    store.set(keys.installation.inProgress, true);
    store.set(keys.installation.completion.timeout, 0);
    store.set(keys.installation.completion.wait, true);
    store.set(keys.scanning.automatic.scanningOnSystemStartup.enabled, false);
    store.breakDown(profile.key());
    const auto writes = store.writes().size();
    begin();
    ASSERT_TRUE(log.waitFor("Failed to read the time of the last update: store is down", 2)) << log.text();
    EXPECT_EQ(store.writes().size(), writes);
    EXPECT_EQ(store.subscriptions(), 0u);
    store.repair(profile.key());
    common->done.waitFor(4); // two of the deployment that is given up
    EXPECT_EQ(store.subscriptions(), 13u);
    EXPECT_EQ(store.get(keys.installation.completion.wait), false);
    EXPECT_TRUE(common->atomExists);
    EXPECT_EQ(store.get(restartNeeded), false);
    EXPECT_FALSE(registry->doesKeyExist(triggerKey));
    EXPECT_TRUE(log.has(4, "Scan on startup is not enabled.")) << log.text();
    EXPECT_TRUE(log.waitFor("Windows update has never been installed")) << log.text();
    EXPECT_LT(log.text().find("Tarnpatch maximum rescanning period is "), log.text().find("Windows update has never"));
}

TEST(TarnHandler, waitsForTheStoreAndEndsOnAStopAtAnyMoment)
{
    const auto unreachable = "Failed to initialize handler plugin: store unreachable";
    const auto noProfile = "Meridia profile is not available yet.";
    enum Then { Stops, Ends, Recovers };
    const struct {
        const char* moment; ///< a text in the log; none: before run
        Then then;
        int storeError; ///< at each of the store's openings in turn
        bool profile;
        const char* logged;
    } rows[] = {
        {"", Stops, 0, true, "Plugin stop requested"},
        {"", Stops, 0, false, noProfile},
        {"", Stops, 3, true, unreachable},
        {"no store", Stops, 3, true, unreachable},
        {"no store", Recovers, 3, true, "Processing stopped"},
        {"no store", Ends, 5, true, unreachable},
        {"Failed to read the time of the last update", Stops, 0, false, noProfile},
        {"Run processing", Stops, 0, true, "Processing stopped"},
    };
    for (const auto& [moment, then, storeError, profile, logged] : rows)
        for (int goodOpenings = storeError ? 2 : 0; goodOpenings >= 0; --goodOpenings) {
            SCOPED_TRACE(testing::Message() << moment << " " << logged << " " << goodOpenings);
            FakedHandler started;
            started.common->storeError = storeError;
            started.common->goodOpenings = goodOpenings;
            if (!profile)
                started.store.set(hostKeys.lastSuccessfulUpdateTimestamp, nullptr);
            if (!*moment)
                started.handler.stop();
            started.begin();
            EXPECT_TRUE(started.log.waitFor(moment));
            if (then == Recovers)
                started.common->storeError = 0;
            EXPECT_TRUE(then != Recovers || started.log.waitFor("Run processing"));
            for (int stops = 0; then != Ends && stops < 2; ++stops)
                started.handler.stop();
            started.expectEnd();
            EXPECT_EQ(started.store.subscriptions(), 0u);
            EXPECT_FALSE(started.factory->manager && started.factory->manager->running);
            EXPECT_GE(started.log.count(logged), 1u) << started.log.text();
        }
}

TEST_F(TarnHandlerTest, stopsWhatAStopDuringTheStartCouldNotSee)
{
    // The stop comes on the store's thread, between the objects' making and the start of the manager.
    store.subscribeForChanges(statusKeys.enabled.key(), [this](const std::wstring&) { handler.stop(); });
    begin();
    expectEnd();
    EXPECT_FALSE(factory->manager->running);
    EXPECT_TRUE(log.has(4, "Processing stopped")) << log.text();
}

TEST_F(TarnHandlerTest, endsSwitchedOffByAChangeDuringTheStart)
{
    std::atomic<bool> isChanged = false;
    std::future<void> change;
    store.subscribeForChanges(statusKeys.enabled.key(), [&](const std::wstring&) {
        if (isChanged.exchange(true))
            return;
        change = std::async(std::launch::async, [this] { store.set(keys.enabled, false); });
        EXPECT_EQ(change.wait_for(support::moment), std::future_status::timeout);
    });
    begin();
    EXPECT_EQ(common->taskUpdates.waitFor(2), (Entries{"on", "off"}));
}

TEST_F(TarnHandlerTest, isOutOfReachAfterAStopDuringAnOutage)
{
    beginAndWait();
    support::Gate gate;
    factory->manager->whileUpdating = [&] {
        store.breakDown();
        handler.stop(); // from inside a notification
        gate.pass();
    };
    const auto& wait = keys.installation.completion.wait;
    const auto notifier = std::async(std::launch::async, [&] { store.set(wait, true); });
    gate.waitUntilEntered();
    EXPECT_TRUE(log.waitFor("Failed to unsubscribe from property: ", 26)) << log.text();
    EXPECT_EQ(ended.wait_for(support::moment), std::future_status::timeout);
    gate.open();
    expectEnd();
    EXPECT_EQ(doneSince(2, 2), (Entries{"update", "scan"})) << "the end has waited for the whole notification";
    store.repair();
    EXPECT_EQ(store.subscriptions(), 13u);
    EXPECT_EQ(doneAt(wait, false), Entries());
    EXPECT_EQ(doneAt(keys.enabled, false), Entries());
}

TEST_F(TarnHandlerTest, emptiesTheStatusWhenSwitchedOffAndScansWhenSwitchedOn)
{
    const auto& missing = statusKeys.scanning.lastScanning.missingUpdates;
    const auto& scan = keys.remoteOperations.scanForUpdates;
    const Entries expected[] = {{"update"}, {"update", "scan"}};
    beginAndWait();
    int start = 0;
    for (const bool enable : {false, true, false}) {
        store.set(missing, {1, 2});
        EXPECT_EQ(doneAt(keys.enabled, enable, expected[enable].size()), expected[enable]);
        EXPECT_EQ(store.get(statusKeys.enabled), enable);
        EXPECT_EQ(store.get(missing).size(), enable ? 2u : 0u);
        EXPECT_EQ(doneAt(scan.start, --start, enable ? 2 : 0), enable ? (Entries{"reason 1", "scan"}) : Entries());
        EXPECT_EQ(store.get(scan.ack) == start, !enable) << "an agent's to write, or nobody's";
    }
}

TEST_F(TarnHandlerTest, answersEachChange)
{
    beginAndWait();
    EXPECT_EQ(doneAt(keys.installation.deploymentQueue, nlohmann::json::array()), Entries());
    EXPECT_EQ(doneAt(keys.installation.deploymentQueue, {{{"update_id", "x"}}}), Entries{"scan"});
    EXPECT_EQ(doneAt(keys.installation.completion.wait, false), (Entries{"update", "scan"}));
    EXPECT_EQ(doneAt(keys.remoteOperations.scanForUpdates.start, 8), (Entries{"reason 1", "scan"}));
    EXPECT_EQ(doneAt(install.updatesToInstall, "ALL"), Entries());
    EXPECT_EQ(doneAt(install.start, 1), (Entries{"scan", "reason 2", "scan"})) << "a new item starts the agent, too";
    EXPECT_TRUE(log.waitFor("WUS stopper trigger key found as: 0")) << log.text();
    handler.stop();
    expectEnd();
    EXPECT_TRUE(log.has(4, "WUS stopper stopped"));
}

TEST_F(TarnHandlerTest, takesAnEmptyTaskFromTheModeAndClosesWhatItCantServeTheResultFirst)
{
    const struct {
        const char* mode;
        bool enabled;
        nlohmann::json queued;
        const char* result;
    } rows[] = {
        {"install_all", true, {"all"}, "failed"},
        {"install_critical", true, {"critical"}, "failed"},
        {"install_critical_and_important", true, {"important"}, "failed"},
        {"disable", true, nlohmann::json::array(), "success"},
        {"install_all", false, nlohmann::json::array(), "failed"},
    };
    beginAndWait();
    for (int start = 0; const auto& [mode, enabled, queued, result] : rows) {
        SCOPED_TRACE(testing::Message() << mode << enabled);
        store.set(keys.installation.deploymentQueue, nlohmann::json::array());
        store.set(keys.installation.automatic.mode, mode);
        store.set(statusKeys.enabled, enabled);
        store.set(install.start, ++start);
        nlohmann::json ids = nlohmann::json::array();
        for (const auto& item : store.get(keys.installation.deploymentQueue))
            ids.push_back(item.at("update_id"));
        EXPECT_EQ(ids, queued);
        EXPECT_EQ(store.get(install.result), result);
        EXPECT_EQ(store.get(install.ack) == start, queued.empty()) << "the others are the agent's";
    }
    auto writes = store.writes();
    // The published list comes whenever the publisher gets to it.
    std::erase(writes, keys.currentStatus.patchesToInstall.key());
    EXPECT_EQ(std::vector(writes.end() - 3, writes.end()),
        (std::vector<std::wstring>{install.result.key(), install.result.key(), install.ack.key()}));
}

TEST_F(TarnHandlerTest, completesAFinishedDeploymentOnceThroughAFailureAndARunningAgent)
{
    store.set(keys.installation.completion.wait, true);
    store.set(keys.installation.inProgress, true);
    beginAndWait();
    storage->addPatchState({});
    storage->reportInstallationFinished(true);
    // The fall of the flag is a change like any other.
    EXPECT_EQ(doneSince(2, 5), (Entries{"update", "scan", "update", "arguments -c complete", "scan"}));
    EXPECT_EQ(log.count("Failed to complete a deployment: no look"), 1u) << log.text();
    EXPECT_EQ(factory->manager->looks, 3);
    EXPECT_EQ(store.get(keys.installation.completion.wait), false);
    EXPECT_EQ(store.get(keys.installation.inProgress), false);
    handler.stop();
    expectEnd();
    EXPECT_EQ(log.count("waitPostRebootDeployCompleted: Stop event has been signaled"), 0u) << "the watch is over";
}

TEST(TarnHandler, catchesUpWithChangesOfTheDeploymentWaitThatItMissed)
{
    const auto& wait = keys.installation.completion.wait;
    for (const bool isAwaited : {false, true}) {
        SCOPED_TRACE(isAwaited);
        FakedHandler h;
        h.store.set(keys.recovery.enabled, true);
        h.store.set(wait, isAwaited);
        h.store.breakDown(wait.key());
        h.beginAndWait();
        h.store.repair(wait.key());
        EXPECT_TRUE(h.log.waitFor("completion.wait is made.")) << h.log.text();
        if (isAwaited) {
            EXPECT_EQ(h.doneSince(2, 2), (Entries{"update", "scan"}));
        }
        EXPECT_EQ(h.doneAt(keys.installation.deploymentQueue, {{{"update_id", "x"}}}, 1).back(), "scan");
        EXPECT_EQ(h.common->done.size(), isAwaited ? 5u : 3u);
    }
}

// The calls of the store by their keys, with their numbers, and what the log says: as before there was a recovery, but
// for the one read of its key.
constexpr auto lifeWithoutRecovery =
    R"(status.windows.meridia.last_successful_update_timestamp 1
status.windows.tarnpatch.enabled 4
status.windows.tarnpatch.installation.log.entries 2
status.windows.tarnpatch.scanning.last_scanning.missing_updates 2
windows.tarnpatch.enabled 4
windows.tarnpatch.installation.automatic.frequency 2
windows.tarnpatch.installation.automatic.hour 2
windows.tarnpatch.installation.automatic.mode 2
windows.tarnpatch.installation.completion.wait 2
windows.tarnpatch.installation.deployment_queue 2
windows.tarnpatch.recovery.enabled 1
windows.tarnpatch.remote_operations.install_updates.start 2
windows.tarnpatch.remote_operations.scan_for_updates.ack 1
windows.tarnpatch.remote_operations.scan_for_updates.start 4
windows.tarnpatch.scanning.automatic.maximum_rescanning_period 1
windows.tarnpatch.scanning.automatic.polling_interval 3
windows.tarnpatch.scanning.exclude_updates.by_rule 3
windows.tarnpatch.scanning.exclude_updates.by_type 2
Plugin stop requested
Processing stopped
Run processing
Scheduler period: 600000 ms.
Setting 'windows.tarnpatch.enabled' not found - fallback to default value
Setting 'windows.tarnpatch.enabled' not found - fallback to default value
Setting 'windows.tarnpatch.remote_operations.scan_for_updates.ack' not found - fallback to default value
Setting 'windows.tarnpatch.scanning.automatic.maximum_rescanning_period' not found - fallback to default value
Setting 'windows.tarnpatch.scanning.automatic.polling_interval' not found - fallback to default value
Tarnpatch enabled status: wasEnabled = 1, enable = 1
Tarnpatch maximum rescanning period is 24 hours. It's 86400 seconds.
Thread stop event signaled
WUS poll thread exited
WUS stopper started
WUS stopper stopped
WUS stopper trigger key found as: 0
Windows update has never been installed
tarnag.exe start requested
waitPostRebootDeployCompleted: Stop event has been signaled
)";

TEST_F(TarnHandlerTest, leavesNoTraceOfARecoveryThatIsOff)
{
    std::mutex mutex;
    std::map<std::string, int> calls;
    for (const KeyInfo& key : listKeys())
        store.fail(key.name, [&, name = str::toUtf8(key.name)] {
            const std::lock_guard lock(mutex);
            ++calls[name];
        });
    beginAndWait();
    doneAt(keys.remoteOperations.scanForUpdates.start, 8, 2);
    doneAt(keys.scanning.excludeUpdatesByRule, "x", 1);
    handler.stop();
    expectEnd();
    std::string found;
    for (const auto& [name, count] : calls)
        found += name + ' ' + std::to_string(count) + '\n';
    std::multiset<std::string> lines;
    for (const auto& [level, text] : log.lines())
        if (level <= 4 && text.find("hanlde = ") == std::string::npos)
            lines.insert(text.substr(text.find_first_not_of(' ')));
    for (const std::string& line : lines)
        found += line + '\n';
    EXPECT_EQ(found, lifeWithoutRecovery);
}

TEST_F(TarnHandlerTest, wakesTheSchedulerOnAResumeOnly)
{
    handler.onPowerEvent(18, 0);
    store.set(keys.scanning.automatic.pollingInterval, 0);
    beginAndWait();
    EXPECT_TRUE(log.has(4, "Scheduler period: 60000 ms.")) << "no interval makes it spin";
    handler.onPowerEvent(7, 0);
    EXPECT_EQ(log.count("ActionScheduler::onResume"), 0u);
    handler.onPowerEvent(18, 0);
    EXPECT_GE(log.count("ActionScheduler::onResume"), 1u) << log.text();
}

} // namespace
} // namespace vx::tarn
