#include "rig.h"

#include "common/factory/commonfactory.h"
#include "common/patchstorage/ipatchstorage.h"

namespace rig {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using vx::tarn::KeyRow;

const auto& install = settings.remoteOperations.installUpdates;
const auto& completion = settings.installation.completion;
const auto& inProgress = settings.installation.inProgress;
const auto& restartNeeded = status.installation.lastInstallation.restartComputerNeeded;

/// Updates KB0, KB1, ... of product p0 to p2, severity 1 to 3.
json updates(int count)
{
    json list = json::array();
    for (int i = 0; i < count; ++i)
        list.push_back({{"update_name", "KB" + std::to_string(i)}, {"product_name", "p" + std::to_string(i % 3)},
            {"severity", 1 + i % 3}});
    return list;
}

class DeploymentTest : public SystemTest {
protected:
    DeploymentTest() { storage->clear(); }
    ~DeploymentTest() override { storage->clear(); }

    /// A change that comes while the plug-in publishes shows with the next change: one is made if need be, by the same
    /// JSON in another text, as a value that stays the same is no change.
    void waitForPass(const KeyRow& row, const std::string& what, const std::function<bool()>& condition)
    {
        unsigned looks = 0;
        waitFor(storeFile.parent_path(), what, [&] {
            if (++looks % 8 == 0)
                client.set(keyOf(row), Value::fromObject(client.get(keyOf(row))->asObject() + ' '));
            return condition();
        });
    }
    /// Until exactly these are published, all in this state.
    void waitForPublished(const Texts& names, const std::string& state)
    {
        const auto published = [&] {
            Texts found;
            for (const json& patch : get(settings.currentStatus.patchesToInstall))
                if (found.emplace_back(patch.at("update_name")); patch.at("status").at("value") != state)
                    found.back() += " in another state";
            return found;
        };
        waitForPass(missingUpdates, testing::PrintToString(names) + state, [&] { return published() == names; });
    }
    void request(std::int64_t start, const std::string& task)
    {
        put(install.updatesToInstall, task);
        put(install.start, start);
    }
    void requestAndWait(std::int64_t start, const std::string& task)
    {
        request(start, task);
        waitForValue(install.ack, start);
    }

    const std::shared_ptr<vx::tarn::common::IPatchStorage> storage =
        vx::tarn::common::CommonFactory().createPatchStorage();
};

TEST_F(DeploymentTest, leadsFromTheRequestOverEachStateToTheResult)
{
    const Gate start("deploy"), executing("executing");
    json deploy = start.run(), pause = executing.run();
    pause["at"] = "installation_executing";
    deploy["deploy"] = {{"stepMs", 0}, {"pauses", {pause}}};
    script({{{"missingUpdates", updates(6)}}, deploy, json::object()});
    startHost();
    const std::string result = keyOf(install.result), ack = keyOf(install.ack);
    for (const auto& key : {result, ack})
        client.subscribe(key, [this](const devhost::store::Change& change) { heard.add(change.name); });
    const std::string task = "PRODUCT=p2;PATCH=KB0;ALLOW_UNSIGNED";
    request(1, task);
    ASSERT_TRUE(start.waitUntilStarted());
    EXPECT_THAT(queue(), ElementsAre(task));
    waitForPublished({"KB0", "KB2", "KB5"}, "installation_requested");
    start.release();
    ASSERT_TRUE(executing.waitUntilStarted());
    waitForPublished({"KB0", "KB2", "KB5"}, "installation_executing");
    executing.release();
    waitForPublished({}, {});
    EXPECT_THAT(heard.waitFor(3), ElementsAre(result, result, ack));
    EXPECT_EQ(get(install.ack), 1);
    EXPECT_EQ(get(install.result), "success");
    EXPECT_THAT(queue(), IsEmpty());
}

TEST_F(DeploymentTest, goesOnAfterARebootAndIsCompletedOnceWhateverCameBetween)
{
    script({{{"missingUpdates", updates(2)}}, {{"deploy", {{"reboot", true}, {"stepMs", 0}}}}, json::object()},
        {{"continue", {{{"idle", true}, {"exitCode", 7}}, json::object()}}});
    startHost();
    requestAndWait(1, "ALL");
    EXPECT_EQ(get(install.result), "reboot_needed");
    waitForValue(completion.wait, true);
    waitForPublished({"KB0", "KB1"}, "installation_will_continue_after_reboot");
    EXPECT_EQ(get(restartNeeded), true);
    EXPECT_EQ(command("reboot"), 1u) << "the agent fails";
    std::filesystem::remove(agentFolder / "tarnag.exe");
    EXPECT_EQ(command("reboot"), 1u) << "there is none";
    installAgent();
    waitForLog("Run processing", 3);
    EXPECT_EQ(get(completion.wait), true);
    EXPECT_EQ(command("reboot"), 0u);
    waitForLog("waitPostRebootDeployCompleted: Found that installation has been finished.");
    waitForValue(completion.wait, false);
    waitForValue(inProgress, false);
    waitForLog("tarnag.exe. Arguments: -c complete");
    waitForPublished({}, {});
    waitForValue(restartNeeded, false);
    EXPECT_FALSE(storage->hasPatchStates());
    scan(1);
    EXPECT_EQ(logCount("Arguments: -c complete"), 1u) << "the next start is an ordinary one";
    EXPECT_EQ(logCount("It's a first run after reboot."), 4u);
}

TEST_F(DeploymentTest, saysWhatIsWrongWithAListAndGoesOnWithTheNext)
{
    const std::pair<std::string, const char*> malformed[] = {{"[5]", "Failed to publish the current operations: "},
        {std::string(20'000, '[') + std::string(20'000, ']'), "Failed to read a nlohmann::json value: "}};
    script({{{"missingUpdates", updates(1)}}, json::object()});
    startHost();
    putQueue({"ALL"});
    for (const auto& [text, failure] : malformed) {
        client.set(keyOf(missingUpdates), Value::fromObject(text));
        waitForPass(missingUpdates, "a failure", [&] { return logCount(failure) > 0; });
        put(settings.currentStatus.patchesToInstall, json::array());
        put(missingUpdates, updates(1));
        waitForPublished({"KB0"}, "installation_requested");
    }
    scan(1);
}

} // namespace
} // namespace rig
