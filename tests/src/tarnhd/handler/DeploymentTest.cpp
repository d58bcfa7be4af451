#include "handlerfakes.h"

#include "settings-api/exceptions.h"
#include "support/logcapture.h"
#include "tarnhd/tarnhandler.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <thread>

namespace vx::tarn {
namespace {

using nlohmann::json;
using Entries = std::vector<std::string>;

const std::wstring install = L"windows.tarnpatch.remote_operations.install_updates.";
const std::wstring modeKey = L"windows.tarnpatch.installation.automatic.mode";
const std::wstring queueKey = L"windows.tarnpatch.installation.deployment_queue";
const std::wstring completionWaitKey = L"windows.tarnpatch.installation.completion.wait";
const std::wstring inProgressKey = L"windows.tarnpatch.installation.in_progress";
const std::wstring statusEnabledKey = L"status.windows.tarnpatch.enabled";
const std::wstring missingUpdatesKey = L"status.windows.tarnpatch.scanning.last_scanning.missing_updates";
const std::wstring logKey = L"status.windows.tarnpatch.installation.log.entries";
const std::wstring publishedKey = L"windows.tarnpatch.current_status.patches_to_install";

class DeploymentTest : public testing::Test {
protected:
    DeploymentTest()
    {
        common->atomExists = true;
        store.setInt64Value(store.profileKey, 1);
        store.setBoolValue(statusEnabledKey, true);
        store.subscribeForChanges(
            publishedKey, [this](const std::wstring& key) { published.add(store.getJsonValue(key).dump()); });
        run = std::thread([this] { handler.run(); });
        EXPECT_EQ(common->done.waitFor(2), (Entries{"update", "tick"}));
    }
    ~DeploymentTest() override
    {
        handler.stop();
        run.join();
    }

    /// What was done since the last call, once there are so many entries.
    Entries next(std::size_t count)
    {
        Entries entries = common->done.waitFor(seen + count);
        entries.erase(entries.begin(), entries.begin() + static_cast<std::ptrdiff_t>(seen));
        seen += entries.size();
        return entries;
    }
    Entries queue()
    {
        Entries texts;
        if (store.contains(queueKey))
            for (const json& item : store.getJsonValue(queueKey))
                texts.push_back(item.at("update_id"));
        return texts;
    }
    void request(std::int64_t start, const std::wstring& task)
    {
        store.setStringValue(install + L"updates_to_install", task);
        store.setInt64Value(install + L"start", start);
    }

    /// Writes until the condition holds: a change during a pass waits for the next change.
    template <typename Condition>
    bool holdsAfter(const std::wstring& key, const json& value, Condition condition)
    {
        const auto end = std::chrono::steady_clock::now() + support::deadline;
        while (std::chrono::steady_clock::now() < end) {
            store.setJsonValue(key, value);
            std::this_thread::yield();
            if (condition())
                return true;
        }
        return false;
    }
    bool isPublishedAfter(const std::wstring& key, const json& value, const std::string& text)
    {
        return holdsAfter(key, value, [&, before = published.size()] {
            return published.size() > before && published.waitFor(1).back().find(text) != std::string::npos;
        });
    }

    support::LogCapture log;
    std::shared_ptr<support::FakeCommonFactory> common = std::make_shared<support::FakeCommonFactory>();
    std::shared_ptr<support::FakeTarnhdFactory> factory = std::make_shared<support::FakeTarnhdFactory>(*common);
    support::ProfileStore& store = *common->store;
    support::Record published;
    TarnHandler handler{common, factory};
    std::size_t seen = 2;
    std::thread run;
};

TEST_F(DeploymentTest, queuesARequestOrClosesIt)
{
    struct Row {
        const char* label;
        bool enabled;
        const wchar_t* mode;
        const wchar_t* task;
        Entries queued;
        const wchar_t* result;
        bool acknowledged;
        const char* logged;
    };
    // A new queue item starts the agent once by itself, and the request once more with its reason.
    const Row rows[] = {
        {"as it stands", true, L"disable", L" ID=a;ALLOW_UNSIGNED", {" ID=a;ALLOW_UNSIGNED"}, L"failed", false,
            "Deployment task was put to the queue. ' ID=a;ALLOW_UNSIGNED'."},
        {"all by mode", true, L"install_all", L"", {"all"}, L"failed", false,
            "Deployment task was put to the queue. 'all'."},
        {"critical by mode", true, L"install_critical", L"", {"critical"}, L"failed", false, "'critical'."},
        {"important by mode", true, L"install_critical_and_important", L"", {"important"}, L"failed", false,
            "'important'."},
        {"nothing by mode", true, L"disable", L"", {}, L"success", true,
            "Deployment task with empty scope was not started."},
        {"feature off", false, L"install_all", L"ALL", {}, L"failed", true, "Tarnpatch is disabled."},
    };
    std::int64_t start = 0;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        store.setJsonValue(queueKey, json::array());
        store.setBoolValue(statusEnabledKey, row.enabled);
        store.setStringValue(modeKey, row.mode);
        request(++start, row.task);
        EXPECT_EQ(queue(), row.queued);
        EXPECT_EQ(store.getStringValue(install + L"result"), row.result);
        EXPECT_EQ(store.contains(install + L"ack") && store.getInt64Value(install + L"ack") == start, row.acknowledged);
        EXPECT_EQ(next(0), row.queued.empty() ? Entries{} : (Entries{"scan", "reason 2", "scan"}));
        EXPECT_GE(log.count(row.logged), 1u) << log.text();
    }
}

TEST_F(DeploymentTest, writesTheResultBeforeTheAcknowledgement)
{
    store.setBoolValue(statusEnabledKey, false);
    request(4, L"ALL");
    const auto writes = store.writes();
    EXPECT_THAT(std::vector(writes.end() - 3, writes.end()),
        testing::ElementsAre(install + L"result", install + L"result", install + L"ack"));
    request(4, L"ALL");
    EXPECT_TRUE(log.has(4, "No need to start deploying. start=4, ack=4")) << log.text();
}

TEST_F(DeploymentTest, startsTheAgentForARequestThatIsQueuedAlreadyOrCantBe)
{
    request(1, L"ALL");
    request(2, L"ALL");
    EXPECT_EQ(queue(), (Entries{"ALL"}));
    EXPECT_EQ(next(5), (Entries{"scan", "reason 2", "scan", "reason 2", "scan"}));
    store.fail(queueKey, std::make_exception_ptr(settings::ServerUnreachableException(queueKey, L"f", L"file", 1)));
    request(3, L"CRITICAL");
    EXPECT_TRUE(log.has(2, "Settings server is unreachable")) << log.text();
    EXPECT_EQ(next(2), (Entries{"reason 2", "scan"}));
    store.fail(queueKey, nullptr);
    EXPECT_EQ(queue(), (Entries{"ALL"}));
}

TEST_F(DeploymentTest, publishesEachChangeAndOutlivesMalformedLists)
{
    EXPECT_TRUE(isPublishedAfter(missingUpdatesKey, {{{"update_name", "KB1"}}}, "[]"));
    EXPECT_TRUE(isPublishedAfter(queueKey, {{{"update_id", "ALL"}}}, "installation_requested"));
    for (const std::wstring& key : {missingUpdatesKey, logKey, queueKey}) {
        SCOPED_TRACE(std::string(key.begin(), key.end()));
        const json good = store.contains(key) ? store.getJsonValue(key) : json::array();
        const std::string failure = "Failed to publish the current operations: [json.exception.type_error.302]";
        EXPECT_TRUE(
            holdsAfter(key, "no list", [&, before = log.count(failure)] { return log.count(failure) > before; }));
        EXPECT_TRUE(isPublishedAfter(key, good, "installation_requested"));
    }
}

TEST_F(DeploymentTest, completesAFinishedDeploymentOnceTheAgentIsGone)
{
    store.setBoolValue(completionWaitKey, true);
    store.setBoolValue(inProgressKey, true);
    EXPECT_EQ(next(3), (Entries{"cancel", "update", "scan"}));
    factory->manager->agentRuns = true;
    common->installationFinished = true;
    // The fall of the flag is a change like any other.
    EXPECT_EQ(next(6), (Entries{"cancel", "update", "scan", "update", "arguments -c complete", "scan"}));
    EXPECT_TRUE(log.has(4, "waitPostRebootDeployCompleted: Agent is already running. Waiting for be finished."));
    EXPECT_EQ(log.count("waitPostRebootDeployCompleted: Found that installation has been finished."), 2u);
    EXPECT_FALSE(store.getBoolValue(completionWaitKey));
    EXPECT_FALSE(store.getBoolValue(inProgressKey));
    handler.stop();
    EXPECT_EQ(log.count("waitPostRebootDeployCompleted: Stop event has been signaled"), 0u) << "the watch is over";
}

TEST_F(DeploymentTest, triesToCompleteAgainWhenTheStoreFails)
{
    store.fail(inProgressKey, std::make_exception_ptr(std::runtime_error("gone")));
    common->installationFinished = true;
    EXPECT_TRUE(log.waitFor("Failed to complete a deployment: gone"));
    EXPECT_EQ(next(3), (Entries{"cancel", "update", "scan"}));
    store.fail(inProgressKey, nullptr);
    EXPECT_EQ(next(6), (Entries{"cancel", "update", "scan", "update", "arguments -c complete", "scan"}));
}

} // namespace
} // namespace vx::tarn
