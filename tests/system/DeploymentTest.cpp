#include "rig.h"

#include "common/factory/commonfactory.h"
#include "common/patches/patchinfo.h"
#include "common/patches/updateid.h"
#include "common/patchstorage/patchregistrystorage.h"
#include "support/record.h"
#include "vxtl/registry.h"
#include "vxtl/str.h"

#include <gmock/gmock.h>

namespace rig {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;
using Texts = std::vector<std::string>;

const auto& install = settings.remoteOperations.installUpdates;
const auto& completion = settings.installation.completion;
const std::string queueKey = keyOf(settings.installation.deploymentQueue);
const std::string inProgressKey = keyOf(settings.installation.inProgress);
const std::string logKey = keyOf(status.installation.log.entries);
const std::string publishedKey = keyOf(settings.currentStatus.patchesToInstall);
const std::string restartNeededKey = keyOf(status.installation.lastInstallation.restartComputerNeeded);

/// Updates named after their numbers, of product p0 to p2, severity 1 to 3.
json updates(int count)
{
    json list = json::array();
    for (int i = 0; i < count; ++i) {
        const std::string digit = std::to_string(i);
        list.push_back(
            {{"update_name", "KB" + digit}, {"product_name", "p" + std::to_string(i % 3)}, {"severity", 1 + i % 3},
                {"patch_specifier", {{"id", "00000000-0000-0000-0000-00000000000" + digit}, {"region", 1}}}});
    }
    return list;
}

std::string idOf(int number)
{
    return vx::str::toUtf8(
        vx::tarn::common::deriveUpdateId({}, L"p" + std::to_wstring(number % 3), {}, L"KB" + std::to_wstring(number)));
}

/// As `published` gives them.
Texts patches(const std::vector<int>& numbers, const std::string& state)
{
    Texts texts;
    for (const int number : numbers)
        texts.push_back("KB" + std::to_string(number) + ' ' + state);
    return texts;
}

class DeploymentTest : public SystemTest {
protected:
    DeploymentTest() { clearStorage(); }
    ~DeploymentTest() override { clearStorage(); }

    static void clearStorage() { vx::tarn::common::CommonFactory().createPatchStorage()->clear(); }

    void setList(const std::string& key, const json& list) { client.set(key, Value::fromObject(list.dump())); }
    json list(const std::string& key)
    {
        const auto value = client.get(key);
        return value ? json::parse(value->asObject()) : json::array();
    }
    Texts queue()
    {
        Texts texts;
        for (const json& item : list(queueKey))
            texts.push_back(item.at("update_id"));
        return texts;
    }
    /// The published list, each patch as "KB1 executing".
    Texts published()
    {
        Texts texts;
        for (const json& patch : list(publishedKey))
            texts.push_back(
                patch.at("update_name").get<std::string>() + ' ' + patch.at("status").at("value").get<std::string>());
        return texts;
    }
    /// A change that comes while the plug-in publishes shows with the next change: one is made if need be, by the same
    /// JSON in another text, as a value that stays the same is no change.
    void waitForPass(const std::string& key, const std::string& what, const std::function<bool()>& condition)
    {
        unsigned looks = 0;
        waitFor(folder.path(), what, [&] {
            if (++looks % 8 == 0)
                client.set(key, Value::fromObject(client.get(key)->asObject() + ' '));
            return condition();
        });
    }
    void waitForPublished(const Texts& expected)
    {
        waitForPass(
            missingUpdates, "published " + testing::PrintToString(expected), [&] { return published() == expected; });
    }
    void request(std::int64_t start, const std::string& task)
    {
        client.set(keyOf(install.updatesToInstall), Value::fromString(task));
        setNumber(keyOf(install.start), start);
    }
    void requestAndWait(std::int64_t start, const std::string& task)
    {
        request(start, task);
        waitForValue(keyOf(install.ack), Value::fromInt64(start));
    }
};

TEST_F(DeploymentTest, leadsFromTheRequestOverEachStateToTheResult)
{
    const Gate start("deploy"), executing("executing");
    json deploy = start.run(), pause = executing.run();
    pause["at"] = "installation_executing";
    deploy["deploy"] = {{"stepMs", 0}, {"pauses", {pause}}};
    script({{{"missingUpdates", updates(10)}}, deploy, json::object()});
    startHost();
    const auto order = std::make_shared<support::Record>();
    const std::string result = keyOf(install.result), ack = keyOf(install.ack);
    for (const auto& key : {result, ack})
        client.subscribe(key, [order](const devhost::store::Change& change) { order->add(change.name); });
    request(1, "ALL");
    ASSERT_TRUE(start.waitUntilStarted());
    EXPECT_THAT(queue(), ElementsAre("ALL"));
    const std::vector<int> all{0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    waitForPublished(patches(all, "installation_requested"));
    start.release();
    ASSERT_TRUE(executing.waitUntilStarted());
    waitForPublished(patches(all, "installation_executing"));
    executing.release();
    waitForPublished({});
    waitForValue(keyOf(install.ack), Value::fromInt64(1));
    EXPECT_THAT(order->waitFor(3), ElementsAre(result, result, ack));
    EXPECT_EQ(client.get(keyOf(install.result))->asString(), "success");
    EXPECT_THAT(queue(), IsEmpty());
    waitForLog("Update a deployment remote operation status: 1");
    EXPECT_EQ(command("patches"), 0u);
}

TEST_F(DeploymentTest, publishesExactlyTheMatchingPatches)
{
    const std::string guid = "00000000-0000-0000-0000-00000000000";
    const std::pair<std::string, std::vector<int>> rows[] = {
        {"ALL", {0, 1, 2, 3, 4, 5}},
        {"CRITICAL", {0, 3}},
        {"IMPORTANT", {0, 1, 3, 4}},
        {"ID=" + idOf(2) + "&" + idOf(5) + "&unknown", {2, 5}},
        {"GUID=" + guid + "1&zz&" + guid + "4", {1, 4}},
        {"PRODUCT=p2;PATCH=KB0", {0, 2, 5}},
        {"SEVERITY=x;PATCH=KB0", {}},
        {"all", {}},
    };
    script({{{"missingUpdates", updates(6)}}, json::object()});
    startHost();
    std::int64_t start = 0;
    for (const auto& [task, numbers] : rows)
        for (const std::string& flag : {std::string(), std::string(";ALLOW_UNSIGNED")}) {
            SCOPED_TRACE(task + flag);
            // Another list before each, so that the expected one was really made anew.
            setList(queueKey, {{{"update_id", "PATCH=KB1"}}});
            waitForPublished({"KB1 installation_requested"});
            setList(queueKey, json::array());
            waitForPublished({});
            requestAndWait(++start, task + flag);
            EXPECT_THAT(queue(), ElementsAre(task + flag));
            waitForPublished(patches(numbers, "installation_requested"));
        }
}

TEST_F(DeploymentTest, takesAnEmptyTaskFromTheModeAndClosesWhatItCantServe)
{
    struct Row {
        const char* mode;
        bool enabled;
        Texts queued;
        const char* result;
    };
    startHost();
    std::int64_t start = 0;
    for (const Row& row :
        {Row{"install_all", true, {"all"}, "failed"}, Row{"install_critical", true, {"critical"}, "failed"},
            Row{"install_critical_and_important", true, {"important"}, "failed"}, Row{"disable", true, {}, "success"},
            Row{"install_all", false, {}, "failed"}}) {
        SCOPED_TRACE(std::string(row.mode) + (row.enabled ? "" : ", feature off"));
        setList(queueKey, json::array());
        client.set(keyOf(settings.installation.automatic.mode), Value::fromString(row.mode));
        client.set(enabled, Value::fromBool(row.enabled));
        waitForValue(keyOf(status.enabled), Value::fromBool(row.enabled));
        EXPECT_EQ(command("install \"\" --wait 30"), 0u);
        EXPECT_EQ(number(keyOf(install.ack)), ++start);
        EXPECT_EQ(client.get(keyOf(install.result))->asString(), row.result);
        EXPECT_EQ(queue(), row.queued);
    }
}

TEST_F(DeploymentTest, queuesOneTextOnceAndOutlivesAStoreThatFails)
{
    startHost();
    for (const std::int64_t start : {1, 2})
        requestAndWait(start, "ALL");
    EXPECT_THAT(queue(), ElementsAre("ALL"));
    EXPECT_EQ(logCount("Deployment item \"ALL\" already exists in the deployment queue, will be skipped."), 1u);
    // What can't be written now is written with the next change.
    EXPECT_EQ(command("fault set 3 --count 1 --key " + queueKey), 0u);
    requestAndWait(3, "CRITICAL");
    requestAndWait(4, "IMPORTANT");
    EXPECT_THAT(queue(), ElementsAre("ALL", "CRITICAL", "IMPORTANT"));
}

TEST_F(DeploymentTest, goesOnAfterARebootAndIsCompletedOnce)
{
    script({{{"missingUpdates", updates(2)}}, {{"deploy", {{"reboot", true}, {"stepMs", 0}}}}, json::object()});
    startHost();
    requestAndWait(1, "ALL");
    EXPECT_EQ(client.get(keyOf(install.result))->asString(), "reboot_needed");
    waitForValue(keyOf(completion.wait), Value::fromBool(true));
    waitForPublished(patches({0, 1}, "installation_will_continue_after_reboot"));
    EXPECT_TRUE(client.get(restartNeededKey)->asBool());
    EXPECT_EQ(command("reboot"), 0u);
    waitForLog("waitPostRebootDeployCompleted: Found that installation has been finished.");
    waitForValue(keyOf(completion.wait), Value::fromBool(false));
    waitForValue(inProgressKey, Value::fromBool(false));
    waitForLog("tarnag.exe. Arguments: -c complete");
    waitForPublished({});
    waitForValue(restartNeededKey, Value::fromBool(false));
    EXPECT_FALSE(vx::tarn::common::CommonFactory().createPatchStorage()->hasPatchStates());
    scan(1);
    EXPECT_EQ(logCount("Arguments: -c complete"), 1u) << "the next start is an ordinary one";
}

TEST_F(DeploymentTest, waitsForTheAgentBeforeItCompletes)
{
    const Gate gate("busy");
    script({json::object(), gate.run(), json::object()});
    startHost();
    setNumber(scanStart, 1);
    ASSERT_TRUE(gate.waitUntilStarted());
    client.set(inProgressKey, Value::fromBool(true));
    // Garbage first: neither the host nor a later good value suffers from it.
    const auto key = vx::registry::createWin32Registry()->openKey(
        L"HKEY_LOCAL_MACHINE\\Software\\Vantorix\\tarn\\PatchStorage", vx::registry::allAccess);
    for (const wchar_t* name : {L"finished", L"statuses", L"patches"})
        key->setStringValue(name, L"\x1 garbage");
    waitForLog("Failed to check if installation finished. Caught exception: ");
    key->deleteValue(L"finished");
    key->setInt32Value(L"finished", 1);
    waitForLog("waitPostRebootDeployCompleted: Agent is already running. Waiting for be finished.");
    EXPECT_TRUE(client.get(inProgressKey)->asBool());
    gate.release();
    waitForValue(inProgressKey, Value::fromBool(false));
    waitForLog("tarnag.exe. Arguments: -c complete");
}

TEST_F(DeploymentTest, givesUpADeploymentThatDoesNotFinish)
{
    startStoreAlone();
    client.set(keyOf(completion.wait), Value::fromBool(true));
    client.set(inProgressKey, Value::fromBool(true));
    client.set(keyOf(completion.timeout), Value::fromInt32(0));
    setNumber(keyOf(completion.timestamp), 5);
    startHost(Wait::ForProcessing);
    waitForValue(inProgressKey, Value::fromBool(false));
    waitForValue(keyOf(completion.wait), Value::fromBool(false));
    waitForLog("Start wait for deploy complete with timeout of '0 minutes' and wait for deploy timestamp is '5");
    waitForLog("Reset wait for deploy complete settings");
    scan(1);
}

TEST_F(DeploymentTest, saysWhatIsWrongWithAListAndGoesOnWithTheNext)
{
    const std::string failure = "Failed to publish the current operations: ";
    const json malformed[] = {"text", 5, nullptr, json::object(), {5}, {nullptr}, {{{"update_id", 5}}},
        {{{"severity", "x"}, {"status", {{"value", "dancing"}}}, {"operation_id", json::array()}}}};
    script({{{"missingUpdates", updates(1)}}, json::object()});
    startHost();
    setList(queueKey, {{{"update_id", "ALL"}}});
    waitForPublished({"KB0 installation_requested"});
    for (const std::string& key : {queueKey, missingUpdates, logKey}) {
        const json good = list(key);
        for (const json& bad : malformed) {
            SCOPED_TRACE(key + " = " + bad.dump());
            const auto failures = logCount(failure);
            setList(key, bad);
            waitForPass(key, "a failure", [&] { return logCount(failure) > failures; });
        }
        setList(key, good);
        setList(publishedKey, json::array());
        waitForPublished({"KB0 installation_requested"});
    }
    scan(1);
}

} // namespace
} // namespace rig
