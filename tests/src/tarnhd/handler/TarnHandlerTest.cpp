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

/// A handler over fakes, on a computer that has run it since the boot.
struct FakedHandler {
    FakedHandler()
    {
        common->atomExists = true;
        store.setInt64Value(store.profileKey, 1);
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
    void waitForTick() const { EXPECT_EQ(common->done.waitFor(2), (Entries{"update", "tick"})); }
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
        Entries entries = common->done.waitFor(first + count);
        entries.erase(entries.begin(), entries.begin() + static_cast<std::ptrdiff_t>(first));
        return entries;
    }

    std::shared_ptr<support::FakeCommonFactory> common = std::make_shared<support::FakeCommonFactory>();
    std::shared_ptr<support::FakeTarnhdFactory> factory = std::make_shared<support::FakeTarnhdFactory>(*common);
    support::ProfileStore& store = *common->store;
    TarnHandler handler{common, factory};
    std::future<void> ended;
};

class TarnHandlerTest : public testing::Test, protected FakedHandler {
protected:
    void beginAndWait()
    {
        begin();
        waitForTick();
    }

    support::LogCapture log;
};

TEST_F(TarnHandlerTest, waitsForTheProfileThroughFailuresAndLeavesTheStoreAloneUntilThen)
{
    store.setInt64Value(store.profileKey, 0);
    const auto writes = store.writes().size();
    begin();
    store.profileReads.waitFor(2);
    store.fail(store.profileKey, std::make_exception_ptr(std::runtime_error("gone")));
    ASSERT_TRUE(log.waitFor("gone", 2)) << log.text();
    EXPECT_EQ(store.writes().size(), writes);
    EXPECT_EQ(store.subscriptions(), 0u);
    store.fail(store.profileKey, nullptr);
    store.setInt64Value(store.profileKey, 5);
    waitForTick();
    EXPECT_EQ(store.subscriptions(), 10u);
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
        FakedHandler stopped;
        stopped.common->storeError = row.storeError;
        stopped.store.setInt64Value(stopped.store.profileKey, row.profile);
        if (!row.wait)
            stopped.handler.stop();
        stopped.begin();
        if (row.wait)
            row.wait(*stopped.common);
        stopped.handler.stop();
        stopped.handler.stop();
        stopped.expectEnd();
        EXPECT_EQ(stopped.store.subscriptions(), 0u);
        EXPECT_FALSE(stopped.factory->manager && stopped.factory->manager->running);
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
    const struct {
        const char* label;
        bool firstRun, scanWanted;
        std::size_t scans, refusals;
    } rows[] = {
        {"later run", false, true, 0, 0}, {"first run", true, true, 1, 0},
        {"first run, scan not wanted", true, false, 1, 1}, // the cleared flag asks for none
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        const support::LogCapture rowLog;
        FakedHandler first;
        first.common->atomExists = !row.firstRun;
        first.store.setBoolValue(restartNeededKey, true);
        first.store.setBoolValue(startupScanKey, row.scanWanted);
        first.begin();
        first.waitForTick();
        EXPECT_TRUE(first.common->atomExists);
        EXPECT_EQ(first.store.getBoolValue(restartNeededKey), !row.firstRun);
        EXPECT_EQ(rowLog.count("It's a first run after reboot."), row.firstRun ? 1u : 0u);
        EXPECT_EQ(rowLog.count("Scan on startup"), row.scans) << rowLog.text();
        EXPECT_EQ(rowLog.count("Scan on startup is not enabled."), row.refusals) << rowLog.text();
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
    EXPECT_EQ(doneAfter(2, 3), (Entries{"update", "update", "scan"}));
    store.setBoolValue(enabledKey, true);
    EXPECT_EQ(store.getJsonValue(missingUpdatesKey), nlohmann::json::array({3}));
}

TEST_F(TarnHandlerTest, answersEachChange)
{
    const struct {
        std::wstring key;
        nlohmann::json value;
        Entries done;
        const char* logged;
    } rows[] = {
        {queueKey, nlohmann::json::array(), {}, "No items in a deployment queue. No need to start tarnag."},
        {queueKey, {"all"}, {"scan"}, "tarnag.exe start requested"},
        {L"windows.tarnpatch.scanning.exclude_updates.by_rule", "a", {"scan"}, "tarnag.exe start requested"},
        {L"windows.tarnpatch.scanning.exclude_updates.by_type", "a", {"scan"}, "tarnag.exe start requested"},
        {L"windows.tarnpatch.installation.completion.wait", false, {"cancel", "update", "scan"}, "Canceled 0 task(s)"},
        {L"windows.tarnpatch.scanning.automatic.polling_interval", 17, {}, "Polling interval: 17 minute(s)"},
        {scanStartKey, 7, {}, "No need to start scanning. start=7, ack=7"},
        {scanStartKey, 8, {"reason 1", "scan"}, ""},
        {scanStartKey, 3, {"reason 1", "scan"}, ""},
        {statusEnabledKey, false, {}, ""},
        {scanStartKey, 9, {}, "Can't start tarnag.exe for a remote scan: Tarnpatch is disabled."},
    };
    store.setInt64Value(scanAckKey, 7);
    beginAndWait();
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.key.begin(), row.key.end()) + " " + row.value.dump());
        const support::LogCapture rowLog;
        const auto before = common->done.size();
        store.setJsonValue(row.key, row.value);
        EXPECT_EQ(doneAfter(before, 0), row.done);
        EXPECT_NE(rowLog.text().find(row.logged), std::string::npos) << rowLog.text();
        EXPECT_EQ(store.getInt64Value(scanAckKey), row.value == 9 ? 9 : 7);
    }
}

TEST_F(TarnHandlerTest, wakesTheSchedulerOnAResumeOnly)
{
    handler.onPowerEvent(18, 0);
    beginAndWait();
    handler.onPowerEvent(7, 0);
    handler.onPowerEvent(18, 0);
    EXPECT_EQ(doneAfter(2, 1), (Entries{"resume"}));
}

} // namespace
} // namespace vx::tarn
