#include "handlerfakes.h"

#include "support/logcapture.h"
#include "tarnhd/tarnhandler.h"

#include <future>
#include <nlohmann/json.hpp>

namespace vx::tarn {
namespace {

using Entries = std::vector<std::string>;

const std::wstring enabledKey = L"windows.tarnpatch.enabled";
const std::wstring statusEnabledKey = L"status.windows.tarnpatch.enabled";
const std::wstring missingUpdatesKey = L"status.windows.tarnpatch.scanning.last_scanning.missing_updates";
const std::wstring restartNeededKey =
    L"status.windows.tarnpatch.installation.last_installation.restart_computer_needed";
const std::wstring startupScanKey = L"windows.tarnpatch.scanning.automatic.scanning_on_system_startup.enabled";
const std::wstring scanStartKey = L"windows.tarnpatch.remote_operations.scan_for_updates.start";
const std::wstring scanAckKey = L"windows.tarnpatch.remote_operations.scan_for_updates.ack";
const std::wstring queueKey = L"windows.tarnpatch.installation.deployment_queue";

class TarnHandlerTest : public testing::Test {
protected:
    TarnHandlerTest()
    {
        common->atomExists = true;
        store.setInt64Value(store.profileKey, 1);
        store.setBoolValue(statusEnabledKey, true);
    }
    ~TarnHandlerTest() override
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
    /// What was done after `beginAndWait`, once there are so many entries.
    Entries later(std::size_t count)
    {
        Entries entries = common->done.waitFor(2 + count);
        entries.erase(entries.begin(), entries.begin() + 2);
        return entries;
    }

    support::LogCapture log;
    std::shared_ptr<support::FakeCommonFactory> common = std::make_shared<support::FakeCommonFactory>();
    std::shared_ptr<support::FakeTarnhdFactory> factory = std::make_shared<support::FakeTarnhdFactory>(*common);
    support::ProfileStore& store = *common->store;
    TarnHandler handler{common, factory};
    std::future<void> ended;
};

TEST_F(TarnHandlerTest, waitsForTheProfileAndLeavesTheStoreAloneUntilThen)
{
    store.setInt64Value(store.profileKey, 0);
    const auto writes = store.writes().size();
    begin();
    store.profileReads.waitFor(3);
    EXPECT_EQ(store.writes().size(), writes);
    EXPECT_EQ(store.subscriptions(), 0u);
    store.setInt64Value(store.profileKey, 5);
    EXPECT_EQ(common->done.waitFor(2), (Entries{"update", "tick"}));
    EXPECT_EQ(store.subscriptions(), 10u);
}

TEST_F(TarnHandlerTest, outlivesAStoreThatFailsDuringTheWaitForTheProfile)
{
    store.fail(store.profileKey, std::make_exception_ptr(std::runtime_error("gone")));
    begin();
    store.profileReads.waitFor(2);
    store.fail(store.profileKey, nullptr);
    EXPECT_EQ(common->done.waitFor(2), (Entries{"update", "tick"}));
    EXPECT_TRUE(log.has(2, "gone")) << log.text();
}

TEST_F(TarnHandlerTest, endsOnAStopAtAnyMoment)
{
    struct Row {
        const char* moment;
        int storeError;
        std::int64_t profile;
        std::function<void(support::FakeCommonFactory&)> wait;
        const char* logged;
    };
    const Row rows[] = {
        {"before run", 0, 1, nullptr, "Plugin stop requested"},
        {"before run, no profile", 0, 0, nullptr, "Meridia profile is not available yet."},
        {"before run, no store", 3, 1, nullptr, "Failed to initialize handler plugin: store unreachable"},
        {"while the store is away", 3, 1, [](auto& f) { f.storeAttempts.waitFor(1); },
            "Failed to initialize handler plugin: store unreachable"},
        {"during the wait for the profile", 0, 0, [](auto& f) { f.store->profileReads.waitFor(1); },
            "Meridia profile is not available yet."},
        {"while running", 0, 1, [](auto& f) { f.done.waitFor(2); }, "Processing stopped"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.moment);
        const support::LogCapture rowLog;
        const auto fakes = std::make_shared<support::FakeCommonFactory>();
        const auto tarnhdFakes = std::make_shared<support::FakeTarnhdFactory>(*fakes);
        fakes->storeError = row.storeError;
        fakes->store->setInt64Value(fakes->store->profileKey, row.profile);
        TarnHandler stopped(fakes, tarnhdFakes);
        if (!row.wait)
            stopped.stop();
        auto result = std::async(std::launch::async, [&] { stopped.run(); });
        if (row.wait)
            row.wait(*fakes);
        stopped.stop();
        stopped.stop();
        ASSERT_EQ(result.wait_for(support::deadline), std::future_status::ready);
        EXPECT_EQ(fakes->store->subscriptions(), 0u);
        EXPECT_FALSE(tarnhdFakes->manager && tarnhdFakes->manager->running);
        EXPECT_GE(rowLog.count(row.logged), 1u) << rowLog.text();
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

TEST_F(TarnHandlerTest, asksTheStoreAgainOnlyWhileItIsUnreachable)
{
    common->storeError = 5;
    begin();
    expectEnd();
    EXPECT_EQ(common->storeAttempts.size(), 1u);
    EXPECT_TRUE(log.has(2, "Failed to initialize handler plugin: store unreachable")) << log.text();

    common->storeError = 3;
    begin();
    EXPECT_EQ(common->storeAttempts.waitFor(3).size(), 3u);
}

TEST_F(TarnHandlerTest, doesTheFirstRunsWorkOncePerBoot)
{
    store.setBoolValue(restartNeededKey, true);
    beginAndWait();
    EXPECT_TRUE(store.getBoolValue(restartNeededKey));
    EXPECT_FALSE(log.has(4, "It's a first run after reboot."));
}

TEST_F(TarnHandlerTest, looksForAStartupScanAfterItHasClearedTheRestartFlag)
{
    for (const bool wanted : {false, true}) {
        SCOPED_TRACE(wanted);
        const support::LogCapture rowLog;
        const auto fakes = std::make_shared<support::FakeCommonFactory>();
        fakes->store->setInt64Value(fakes->store->profileKey, 1);
        fakes->store->setBoolValue(restartNeededKey, true);
        fakes->store->setBoolValue(startupScanKey, wanted);
        TarnHandler first(fakes, std::make_shared<support::FakeTarnhdFactory>(*fakes));
        auto result = std::async(std::launch::async, [&] { first.run(); });
        fakes->done.waitFor(2);
        first.stop();
        result.get();
        EXPECT_TRUE(fakes->atomExists);
        EXPECT_FALSE(fakes->store->getBoolValue(restartNeededKey));
        EXPECT_TRUE(rowLog.has(4, wanted ? "Scan on startup" : "Scan on startup is not enabled.")) << rowLog.text();
    }
}

TEST_F(TarnHandlerTest, emptiesTheStatusWhenSwitchedOffAndScansWhenSwitchedOn)
{
    store.setJsonValue(missingUpdatesKey, {1, 2});
    beginAndWait();
    store.setBoolValue(enabledKey, false);
    EXPECT_FALSE(store.getBoolValue(statusEnabledKey));
    EXPECT_EQ(store.getJsonValue(missingUpdatesKey), nlohmann::json::array());
    store.setJsonValue(missingUpdatesKey, {3});
    store.setBoolValue(enabledKey, true);
    EXPECT_TRUE(store.getBoolValue(statusEnabledKey));
    EXPECT_EQ(later(3), (Entries{"update", "update", "scan"}));
    store.setBoolValue(enabledKey, true);
    EXPECT_EQ(store.getJsonValue(missingUpdatesKey), nlohmann::json::array({3}));
}

TEST_F(TarnHandlerTest, takesAnyNewScanSignalForARequest)
{
    struct Row {
        const char* label;
        bool enabled;
        std::int64_t start, ack;
        Entries done;
        std::int64_t ackAfter;
    };
    beginAndWait();
    for (const Row& row : {Row{"equal", true, 7, 7, {}, 7}, {"greater", true, 8, 7, {"reason 1", "scan"}, 7},
             {"lower", true, 3, 7, {"reason 1", "scan"}, 7}, {"feature off", false, 9, 7, {}, 9}}) {
        SCOPED_TRACE(row.label);
        const auto before = common->done.size();
        store.setBoolValue(statusEnabledKey, row.enabled);
        store.setInt64Value(scanAckKey, row.ack);
        store.setInt64Value(scanStartKey, row.start);
        const Entries entries = common->done.waitFor(before);
        EXPECT_EQ(Entries(entries.begin() + static_cast<std::ptrdiff_t>(before), entries.end()), row.done);
        EXPECT_EQ(store.getInt64Value(scanAckKey), row.ackAfter);
    }
    EXPECT_TRUE(log.has(4, "No need to start scanning. start=7, ack=7")) << log.text();
}

TEST_F(TarnHandlerTest, startsTheAgentForAFilledQueueAndForChangedRules)
{
    beginAndWait();
    store.setJsonValue(queueKey, nlohmann::json::array());
    EXPECT_TRUE(log.has(5, "No items in a deployment queue. No need to start tarnag."));
    EXPECT_TRUE(later(0).empty());
    store.setJsonValue(queueKey, {"all"});
    store.notify(L"windows.tarnpatch.scanning.exclude_updates.by_rule");
    store.notify(L"windows.tarnpatch.scanning.exclude_updates.by_type");
    EXPECT_EQ(later(3), (Entries{"scan", "scan", "scan"}));
}

TEST_F(TarnHandlerTest, dropsOneShotActionsWhenADeploymentIsComplete)
{
    beginAndWait();
    store.notify(L"windows.tarnpatch.installation.completion.wait");
    EXPECT_EQ(later(3), (Entries{"cancel", "update", "scan"}));
}

TEST_F(TarnHandlerTest, keepsTheSchedulersPeriodAndThreadWhenTheIntervalChanges)
{
    beginAndWait();
    store.setInt32Value(L"windows.tarnpatch.scanning.automatic.polling_interval", 17);
    EXPECT_TRUE(log.has(4, "Setup action scheduler. Polling interval: 17 minute(s)")) << log.text();
    EXPECT_TRUE(later(0).empty());
}

TEST_F(TarnHandlerTest, wakesTheSchedulerOnAResumeOnly)
{
    handler.onPowerEvent(18, 0);
    beginAndWait();
    handler.onPowerEvent(7, 0);
    handler.onPowerEvent(18, 0);
    EXPECT_EQ(later(1), (Entries{"resume"}));
}

} // namespace
} // namespace vx::tarn
