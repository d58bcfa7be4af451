#include "agentfixture.h"
#include "common/factory/commonfactory.h"
#include "common/patches/updateid.h"
#include "common/patchstorage/ipatchstorage.h"
#include "ipc/signal.h"
#include "keys/keycatalogue.h"
#include "vxtl/str.h"

#include <nlohmann/json.hpp>

namespace {

namespace keys = devhost::host::keys;
namespace store = devhost::store;
using namespace vx::tarn::common;
using devhost::host::keyOf;
using nlohmann::json;
using store::Value;
using testing::ElementsAre;

const auto& restartNeeded = keys::status.installation.lastInstallation.restartComputerNeeded;
const auto& inProgress = keys::settings.installation.inProgress;
const auto& completionWait = keys::settings.installation.completion.wait;

std::string idOf(const std::wstring& name)
{
    return vx::str::toUtf8(deriveUpdateId(L"", L"", L"", name));
}

/// With an empty patch storage, and two missing updates in the store.
struct DeployTest : AgentTest {
    DeployTest()
    {
        server.start();
        storage->clear();
        put(keys::status.scanning.lastScanning.missingUpdates,
            json::array({{{"update_name", "A"}, {"severity", 1}}, {{"update_name", "B"}}}));
    }
    ~DeployTest() override { storage->clear(); }

    void put(const vx::tarn::KeyRow& key, const json& value)
    {
        client.set(keyOf(key), Value::fromObject(value.dump()));
    }
    json read(const vx::tarn::KeyRow& key) { return json::parse(client.get(keyOf(key)).value().asObject()); }
    bool flag(const vx::tarn::KeyRow& key) { return client.get(keyOf(key)).value().asBool(); }

    void queue(const std::vector<std::string>& descriptors)
    {
        json items = json::array();
        for (const auto& descriptor : descriptors)
            items.push_back({{"operation_id", "1"}, {"update_id", descriptor}});
        put(keys::settings.installation.deploymentQueue, items);
    }

    void openRequest()
    {
        client.set(keyOf(keys::settings.remoteOperations.installUpdates.start), Value::fromInt64(7));
        client.set(keyOf(keys::settings.remoteOperations.installUpdates.ack), Value::fromInt64(6));
    }

    /// What readers see in the log: first entries with identifier, state and result.
    std::vector<std::string> log()
    {
        std::vector<std::string> lines;
        for (const auto& entry : read(keys::status.installation.log.entries))
            lines.push_back(entry.value("update_id", "?") + " " + entry["status"].value("value", "?") + " " +
                            entry.value("installation_result", "?"));
        return lines;
    }

    support::ChildProcess deploy(const json& members)
    {
        script(json{{"runs", {{{"deploy", members}}}}}.dump());
        return start();
    }

    std::shared_ptr<IPatchStorage> storage = CommonFactory().createPatchStorage();
};

} // namespace

TEST_F(DeployTest, takesPatchesThroughTheirStatesAndItemsFromTheQueue)
{
    const auto name = folder.path().filename().string();
    const devhost::ipc::Signal go(vx::str::fromUtf8(name + "-go"));
    const devhost::ipc::Signal reached(vx::str::fromUtf8(name + "-reached"));
    queue({"ALL", "CRITICAL"});
    openRequest();
    // An entry of somebody else in front, and an old one of B.
    put(keys::status.installation.log.entries,
        {{{"update_id", "other"}, {"status", {{"value", "installation_failed"}}}},
            {{"update_id", idOf(L"B")}, {"status", {{"value", "installation_canceled"}}}}});
    const auto agent =
        deploy({{"stepMs", 0}, {"pauses", {{{"at", "installation_executing"}, {"startedEvent", name + "-reached"},
                                              {"waitForEvent", name + "-go"}}}}});
    ASSERT_TRUE(reached.wait(60'000));
    EXPECT_THAT(log(), ElementsAre(idOf(L"A") + " installation_executing download_success",
                           "other installation_failed ?", idOf(L"B") + " installation_executing download_success"));
    EXPECT_EQ(read(keys::settings.installation.deploymentQueue).size(), 2u);
    go.set();
    EXPECT_EQ(agent.wait(), 0u) << agent.errors();
    EXPECT_THAT(log(), ElementsAre(idOf(L"A") + " installation_completed installation_success",
                           "other installation_failed ?", idOf(L"B") + " installation_completed installation_success"));
    EXPECT_EQ(read(keys::settings.installation.deploymentQueue), json::array());
    EXPECT_EQ(client.get(keyOf(keys::settings.remoteOperations.installUpdates.result)), Value::fromString("success"));
    EXPECT_EQ(client.get(keyOf(keys::settings.remoteOperations.installUpdates.ack)), Value::fromInt64(6))
        << "the plug-in's business";
    EXPECT_THAT(agent.output(), testing::HasSubstr("deploying \"CRITICAL\": 0 updates")) << "A was dealt with";
}

TEST_F(DeployTest, takesAsManyItemsAsItIsToldAndFailsAsItIsTold)
{
    queue({"ID=" + idOf(L"B"), "all", "CRITICAL"});
    openRequest();
    const auto agent = deploy({{"items", 2}, {"stepMs", 0}, {"code", "17"},
        {"states", {"file_downloading", "file_download_failed"}}, {"result", "download_win_error"}});
    EXPECT_EQ(agent.wait(), 0u) << agent.errors();
    EXPECT_THAT(log(), ElementsAre(idOf(L"B") + " file_download_failed download_win_error"));
    EXPECT_EQ(read(keys::status.installation.log.entries)[0]["status"]["code"], "17");
    EXPECT_EQ(read(keys::settings.installation.deploymentQueue)[0]["update_id"], "CRITICAL");
    EXPECT_EQ(client.get(keyOf(keys::settings.remoteOperations.installUpdates.result)), Value::fromString("failed"));
}

TEST_F(DeployTest, leavesARebootDeploymentForTheNextBootAndCompletesIt)
{
    queue({"ALL"});
    openRequest();
    const auto agent = deploy({{"reboot", true}, {"stepMs", 0}});
    EXPECT_EQ(agent.wait(), 0u) << agent.errors();
    EXPECT_THAT(log(), ElementsAre(idOf(L"A") + " installation_will_continue_after_reboot installation_unknown",
                           idOf(L"B") + " installation_will_continue_after_reboot installation_unknown"));
    EXPECT_EQ(read(keys::settings.installation.deploymentQueue), json::array());
    EXPECT_TRUE(flag(restartNeeded) && flag(inProgress) && flag(completionWait));
    const auto age =
        std::time(nullptr) - client.get(keyOf(keys::settings.installation.completion.timestamp)).value().asInt64();
    EXPECT_TRUE(age >= 0 && age < 300) << age;
    EXPECT_EQ(
        client.get(keyOf(keys::settings.remoteOperations.installUpdates.result)), Value::fromString("reboot_needed"));
    EXPECT_EQ(client.get(keyOf(keys::settings.remoteOperations.installUpdates.ack)), Value::fromInt64(7));
    EXPECT_TRUE(storage->hasPatchStates());
    EXPECT_FALSE(storage->isInstallationFinished());

    EXPECT_EQ(start(L"-c continue").wait(), 0u);
    EXPECT_TRUE(storage->isInstallationFinished());
    PatchMap patches;
    std::vector<ReportEvent> events;
    ASSERT_TRUE(storage->loadPatches(patches, events));
    EXPECT_EQ(patches.size(), 2u);
    EXPECT_EQ(std::get<MachineStateReport>(events.back().record).status, MachineStateTarget::Finished);

    // The second one is reported as failed meanwhile.
    PatchStateReport failed;
    failed.patchId = 2;
    failed.status = PatchStateTarget::Failed;
    failed.failure = true;
    storage->addPatchState({ReportEventType::OfflinePatchStatus, failed, 0, {}});
    EXPECT_EQ(start(L"-c complete").wait(), 0u);
    EXPECT_THAT(log(), ElementsAre(idOf(L"A") + " installation_completed installation_success",
                           idOf(L"B") + " installation_failed installation_error"));
    EXPECT_FALSE(flag(restartNeeded));
    EXPECT_FALSE(storage->hasPatchStates());
}

TEST_F(DeployTest, asksForNoRebootWithoutAnythingToInstall)
{
    for (const auto& descriptors : {std::vector<std::string>{}, {"all"}}) {
        queue(descriptors);
        EXPECT_EQ(deploy({{"reboot", true}, {"stepMs", 0}}).wait(), 0u);
        EXPECT_FALSE(client.get(keyOf(completionWait)));
        EXPECT_FALSE(storage->hasPatchStates());
    }
    for (const auto* command : {L"-c continue", L"-c complete"}) {
        const auto agent = start(command);
        EXPECT_EQ(agent.wait(), 0u);
        EXPECT_THAT(agent.output(), testing::HasSubstr("no deployment "));
    }
    EXPECT_FALSE(storage->isInstallationFinished());
}

TEST_F(DeployTest, deploysWhatItFoundWithoutAScript)
{
    queue({"GUID=6E2C4C1B-9A3F-4D55-8C1E-3B0A7F2D9102"});
    const auto agent = start();
    EXPECT_EQ(agent.wait(), 0u) << agent.errors();
    const auto found = read(keys::status.scanning.lastScanning.missingUpdates);
    EXPECT_THAT(log(),
        ElementsAre(found.at(1).at("update_id").get<std::string>() + " installation_completed installation_success"));
    EXPECT_EQ(read(keys::settings.installation.deploymentQueue), json::array());
}
