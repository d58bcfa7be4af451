#include "tarnhd/handler/tarnhandler.h"

#include "common/factory/commonfactory.h"
#include "common/globalatom/iglobalatom.h"
#include "common/patchstorage/ipatchstorage.h"
#include "common/settings/hostsettings.h"
#include "common/settings/tarnpatchsettings.h"
#include "common/settings/tarnpatchstatus.h"
#include "common/updaterlauncher/iupdaterlauncher.h"
#include "logging/logstream.h"
#include "support/fakesettings.h"
#include "support/logcapture.h"
#include "support/record.h"
#include "tarnhd/autoinstallation/autoinstallation.h"
#include "tarnhd/factory/tarnhdfactory.h"
#include "tarnhd/manager/tarnpatchmanager.h"

#include <future>

namespace vx::tarn {
namespace {

using Entries = std::vector<std::string>;

const TarnpatchSettings keys{nullptr};
const TarnpatchStatus statusKeys{nullptr};
const std::wstring profileKey = HostSettings(nullptr).lastSuccessfulUpdateTimestamp.key();
const std::wstring statusEnabledKey = statusKeys.enabled.key();
const std::wstring missingUpdatesKey = statusKeys.scanning.lastScanning.missingUpdates.key();
const std::wstring restartNeededKey = statusKeys.installation.lastInstallation.restartComputerNeeded.key();
const std::wstring startupScanKey = keys.scanning.automatic.scanningOnSystemStartup.enabled.key();
const std::wstring waitKey = keys.installation.completion.wait.key();
const std::wstring inProgressKey = keys.installation.inProgress.key();
const std::wstring queueKey = keys.installation.deploymentQueue.key();
const RemoteInstallationSettings& install = keys.remoteOperations.installUpdates;

/// Nothing of the system: it is itself the launcher, storage and atom that it gives out.
class FakeCommonFactory : public common::CommonFactory,
                          public common::IUpdaterLauncher,
                          public common::IPatchStorage,
                          public common::IGlobalAtom {
public:
    std::shared_ptr<support::FakeSettings> store = std::make_shared<support::FakeSettings>();
    std::atomic<int> storeError = 0; ///< what opening the store answers, until the retry callable gives up
    int goodOpenings = 0;            ///< that many succeed all the same
    bool atomExists = true;
    std::atomic<bool> installationFinished = false; ///< with states, as the storage tells
    support::Record done;
    support::Record taskUpdates; ///< of the scheduled task, by the status that it is to follow

    std::shared_ptr<settings::Settings> createSettings(const RetryCallback& retry) override
    {
        const bool isGood = m_openings < goodOpenings;
        while (const int error = isGood ? 0 : storeError.load()) {
            logging::LogStream(logging::Level::Warning) << "no store";
            if (!retry(static_cast<meridia::QrlMeridiaError_enum>(error)))
                throw std::runtime_error("store unreachable");
        }
        ++m_openings;
        return support::FakeSettings::handle(store);
    }
    using CommonFactory::createSettings;
    std::shared_ptr<common::IUpdaterLauncher> createUpdaterLauncher() override { return {notOwned, this}; }
    void startScan() override { done.add("scan"); }
    void startScanIfOlderThan(std::int64_t) override { done.add("tick"); }
    void startScanAt(std::int64_t) override {}

    std::shared_ptr<common::IPatchStorage> createPatchStorage() override { return {notOwned, this}; }
    bool clear() override { return false; }
    bool savePatches(const common::PatchMap&) override { return false; }
    bool loadPatches(common::PatchMap&, std::vector<common::ReportEvent>&) override { return false; }
    bool addPatchState(const common::ReportEvent&) override { return false; }
    bool reportInstallationFinished(bool) override { return false; }
    bool isInstallationFinished() override { return installationFinished; }
    bool hasPatchStates() override { return true; }

    std::shared_ptr<common::IGlobalAtom> createGlobalAtom(const std::wstring&) override { return {notOwned, this}; }
    bool exists() override { return atomExists; }
    bool create() override { return atomExists = true; }

private:
    const std::shared_ptr<void> notOwned;
    int m_openings = 0;
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
        store.setInt64Value(profileKey, 1);
        store.setBoolValue(statusEnabledKey, true);
    }
    ~FakedHandler()
    {
        handler.stop();
        expectEnd();
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
    /// What is done once there are so many entries behind the first ones.
    Entries doneAfter(std::size_t first, std::size_t count) const
    {
        const Entries entries = common->done.waitFor(first + count);
        return {entries.begin() + static_cast<std::ptrdiff_t>(first), entries.end()};
    }

    support::LogCapture log;
    std::shared_ptr<FakeCommonFactory> common = std::make_shared<FakeCommonFactory>();
    std::shared_ptr<FakeTarnhdFactory> factory = std::make_shared<FakeTarnhdFactory>(*common);
    support::FakeSettings& store = *common->store;
    TarnHandler handler{common, factory};
    std::future<void> ended;
};

class TarnHandlerTest : public testing::Test, protected FakedHandler {};

TEST_F(TarnHandlerTest, waitsForTheProfileThroughFailuresAndThenDoesTheFirstRunsWork)
{
    common->atomExists = false;
    store.setBoolValue(restartNeededKey, true);
    store.setBoolValue(startupScanKey, false);
    store.breakDown(profileKey);
    const auto writes = store.writes().size();
    begin();
    ASSERT_TRUE(log.waitFor("Failed to read the time of the last update: store is down", 2)) << log.text();
    EXPECT_EQ(store.writes().size(), writes);
    EXPECT_EQ(store.subscriptions(), 0u);
    store.repair(profileKey);
    common->done.waitFor(2);
    EXPECT_EQ(store.subscriptions(), 13u);
    EXPECT_TRUE(common->atomExists);
    EXPECT_FALSE(store.getBoolValue(restartNeededKey));
    EXPECT_TRUE(log.has(4, "Scan on startup is not enabled.")) << log.text();
}

TEST(TarnHandler, endsOnAStopAtAnyMoment)
{
    const struct {
        const char* moment; ///< a text in the log; none: before run
        int storeError, goodOpenings;
        bool profile;
        const char* logged;
    } rows[] = {
        {"", 0, 0, true, "Plugin stop requested"},
        {"", 0, 0, false, "Meridia profile is not available yet."},
        {"", 3, 0, true, "Failed to initialize handler plugin: store unreachable"},
        {"no store", 3, 0, true, "Failed to initialize handler plugin: store unreachable"},
        {"no store", 3, 1, true, "Failed to initialize handler plugin: store unreachable"},
        {"no store", 3, 2, true, "Failed to initialize handler plugin: store unreachable"},
        {"last_successful_update_timestamp' not found", 0, 0, false, "Meridia profile is not available yet."},
        {"Run processing", 0, 0, true, "Processing stopped"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.moment + std::string(" ") + row.logged);
        FakedHandler stopped;
        stopped.common->storeError = row.storeError;
        stopped.common->goodOpenings = row.goodOpenings;
        if (!row.profile)
            stopped.store.erase(profileKey);
        if (!*row.moment)
            stopped.handler.stop();
        stopped.begin();
        EXPECT_TRUE(stopped.log.waitFor(row.moment));
        stopped.handler.stop();
        stopped.handler.stop();
        stopped.expectEnd();
        EXPECT_EQ(stopped.store.subscriptions(), 0u);
        EXPECT_FALSE(stopped.factory->manager && stopped.factory->manager->running);
        EXPECT_GE(stopped.log.count(row.logged), 1u) << stopped.log.text();
    }
}

TEST_F(TarnHandlerTest, stopsWhatAStopDuringTheStartCouldNotSee)
{
    // The stop comes on the store's thread, between the objects' making and the start of the manager.
    store.subscribeForChanges(statusEnabledKey, [this](const std::wstring&) { handler.stop(); });
    begin();
    expectEnd();
    EXPECT_FALSE(factory->manager->running);
    EXPECT_TRUE(log.has(4, "Processing stopped")) << log.text();
}

TEST_F(TarnHandlerTest, isOutOfReachAfterAStopDuringAnOutage)
{
    beginAndWait();
    std::promise<void> entered, release;
    factory->manager->whileUpdating = [&] {
        store.breakDown();
        handler.stop(); // from inside a notification
        entered.set_value();
        release.get_future().wait();
    };
    const auto notifier = std::async(std::launch::async, [this] { store.setBoolValue(waitKey, true); });
    entered.get_future().wait();
    EXPECT_TRUE(log.waitFor("Failed to unsubscribe from property: ", 26)) << log.text();
    EXPECT_EQ(ended.wait_for(support::moment), std::future_status::timeout);
    release.set_value();
    expectEnd();
    EXPECT_EQ(doneAfter(2, 2), (Entries{"update", "scan"})) << "the end has waited for the whole notification";
    store.repair();
    EXPECT_EQ(store.subscriptions(), 13u);
    store.setBoolValue(waitKey, false);
    store.setBoolValue(L"windows.tarnpatch.enabled", false);
    EXPECT_EQ(common->done.size(), 4u);
}

TEST(TarnHandler, waitsForAStoreThatCannotBeReachedAndEndsOnOneThatRefuses)
{
    for (const int goodOpenings : {0, 1, 2})
        for (const int error : {3, 5}) {
            SCOPED_TRACE(std::to_string(error) + " after " + std::to_string(goodOpenings));
            FakedHandler started;
            started.common->goodOpenings = goodOpenings;
            started.common->storeError = error;
            started.begin();
            EXPECT_TRUE(started.log.waitFor("no store")) << started.log.text();
            if (error == 5) {
                started.expectEnd();
                EXPECT_EQ(started.log.count("no store"), 1u);
                continue;
            }
            started.common->storeError = 0;
            EXPECT_TRUE(started.log.waitFor("Run processing")) << started.log.text();
        }
}

TEST_F(TarnHandlerTest, emptiesTheStatusWhenSwitchedOffAndScansWhenSwitchedOn)
{
    beginAndWait();
    for (const Entries& expected : {Entries{"update"}, Entries{"update", "scan"}, Entries{"update"}}) {
        const std::size_t before = common->done.size();
        const bool enable = before > 2;
        store.setJsonValue(missingUpdatesKey, {1, 2});
        store.setBoolValue(keys.enabled.key(), enable);
        EXPECT_EQ(doneAfter(before, expected.size()), expected);
        EXPECT_EQ(store.getBoolValue(statusEnabledKey), enable);
        EXPECT_EQ(store.getJsonValue(missingUpdatesKey).size(), enable ? 2u : 0u);
    }
}

TEST_F(TarnHandlerTest, answersEachChange)
{
    using nlohmann::json;
    const struct {
        std::wstring key;
        json value;
        Entries done;
    } rows[] = {
        {queueKey, json::array(), {}},
        {queueKey, json::array({{{"update_id", "x"}}}), {"scan"}},
        {waitKey, false, {"update", "scan"}},
        {keys.remoteOperations.scanForUpdates.start.key(), 8, {"reason 1", "scan"}},
        {install.updatesToInstall.key(), "ALL", {}},
        // A new item of the queue starts the agent once by itself.
        {install.start.key(), 1, {"scan", "reason 2", "scan"}},
    };
    beginAndWait();
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.key.begin(), row.key.end()) + " " + row.value.dump());
        const auto before = common->done.size();
        store.setJsonValue(row.key, row.value);
        EXPECT_EQ(doneAfter(before, 0), row.done);
    }
    EXPECT_TRUE(log.has(5, "Canceled 0 task(s)")) << log.text();
}

TEST_F(TarnHandlerTest, keepsTheScheduledTaskInStepWithStatusAndSettings)
{
    beginAndWait();
    store.setStringValue(keys.installation.automatic.mode.key(), L"install_all");
    store.setStringValue(keys.installation.automatic.frequency.key(), L"every_monday");
    store.setInt32Value(keys.installation.automatic.hour.key(), 7);
    store.setBoolValue(keys.enabled.key(), false);
    EXPECT_EQ(common->taskUpdates.waitFor(5), (Entries{"on", "on", "on", "on", "off"}));
}

TEST_F(TarnHandlerTest, writesTheResultOfARefusedInstallationBeforeTheAcknowledgement)
{
    beginAndWait();
    store.setBoolValue(statusEnabledKey, false);
    store.setInt64Value(install.start.key(), 4);
    const auto writes = store.writes();
    EXPECT_EQ(std::vector(writes.end() - 3, writes.end()),
        (std::vector<std::wstring>{install.result.key(), install.result.key(), install.ack.key()}));
}

TEST_F(TarnHandlerTest, completesAFinishedDeploymentOnceThroughAFailureAndARunningAgent)
{
    store.setBoolValue(waitKey, true);
    store.setBoolValue(inProgressKey, true);
    beginAndWait();
    common->installationFinished = true;
    // The fall of the flag is a change like any other.
    EXPECT_EQ(doneAfter(2, 5), (Entries{"update", "scan", "update", "arguments -c complete", "scan"}));
    EXPECT_EQ(log.count("Failed to complete a deployment: no look"), 1u) << log.text();
    EXPECT_EQ(factory->manager->looks, 3);
    EXPECT_FALSE(store.getBoolValue(waitKey));
    EXPECT_FALSE(store.getBoolValue(inProgressKey));
    handler.stop();
    expectEnd();
    EXPECT_EQ(log.count("waitPostRebootDeployCompleted: Stop event has been signaled"), 0u) << "the watch is over";
}

TEST_F(TarnHandlerTest, wakesTheSchedulerOnAResumeOnly)
{
    handler.onPowerEvent(18, 0);
    beginAndWait();
    handler.onPowerEvent(7, 0);
    EXPECT_EQ(log.count("ActionScheduler::onResume"), 0u);
    handler.onPowerEvent(18, 0);
    EXPECT_GE(log.count("ActionScheduler::onResume"), 1u) << log.text();
}

} // namespace
} // namespace vx::tarn
