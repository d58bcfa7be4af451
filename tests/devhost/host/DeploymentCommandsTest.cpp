#include "common/factory/commonfactory.h"
#include "common/globalatom/globalatom.h"
#include "common/patchstorage/ipatchstorage.h"
#include "host/directorywatch.h"
#include "hostfixture.h"
#include "keys/keycatalogue.h"
#include "store/client/client.h"
#include "store/server/server.h"

namespace {

namespace keys = devhost::host::keys;
namespace store = devhost::store;
using namespace vx::tarn::common;
using devhost::host::keyOf;
using nlohmann::json;
using support::ChildProcess;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr auto bootAtom = L"Global\\PostRebootATOM{894D1810-89A9-4363-A8C5-9F429B518809}";

/// The commands on a store without a host.
class DeploymentCommandsTest : public HostTest {
protected:
    DeploymentCommandsTest() { server.start(); }

    void put(const vx::tarn::KeyRow& key, const json& value)
    {
        client.set(keyOf(key), store::Value::fromObject(value.dump()));
    }

    std::vector<std::string> queued()
    {
        std::vector<std::string> descriptors;
        for (const auto& item : support::parseLines(call("--json queue").output))
            descriptors.push_back(item.at("descriptor"));
        return descriptors;
    }

    store::Server server{(folder.path() / "store.json").native(), vx::str::fromUtf8(instance)};
    store::Client client{vx::str::fromUtf8(instance)};
};

/// A host on the recording plug-in, with an agent and a deployment that waits for a reboot.
class RebootTest : public HostTest {
protected:
    RebootTest()
    {
        PatchInfo patch;
        patch.updateName = L"A";
        storage->savePatches({{1, patch}});
        MachineStateReport report;
        report.status = MachineStateTarget::SafeRebootPending;
        storage->addPatchState({ReportEventType::OfflineMachineStatus, report, 0, {}});
        std::filesystem::copy_file(support::programFolder() / "tarnag.exe", folder.path() / "tarnag.exe");
        restartHost({});
    }
    ~RebootTest() override
    {
        call("stop");
        storage->clear();
    }

    void restartHost(const std::string& options)
    {
        call("stop");
        host.emplace(startHost(options + "--agent-dir \"" + folder.path().string() + "\""));
    }
    /// How many the host has shown; the agent's lines stand between them.
    int events(const std::string& name) const
    {
        const std::string shown = host->output();
        const std::string event = R"("event":")" + name + '"';
        int count = 0;
        for (auto at = shown.find(event); at != std::string::npos; at = shown.find(event, at + 1))
            ++count;
        return count;
    }
    /// Whether it was loaded; that it has started is told a moment later.
    bool pluginIsBack() { return json::parse(call("--json status").output).at("host").at("state") != "not loaded"; }

    std::shared_ptr<IPatchStorage> storage = CommonFactory().createPatchStorage();
    std::optional<ChildProcess> host;
};

} // namespace

TEST_F(DeploymentCommandsTest, refuseWhatTheyCannotRead)
{
    put(keys::settings.installation.deploymentQueue, {{"a", 1}});
    put(keys::settings.currentStatus.patchesToInstall, {{"a", 1}});
    expectOneLineEach({
        {"queue", 1, "the queue cannot be read: "},
        {"queue --pop", 1, "the queue cannot be read: "},
        {"queue --push ALL", 1, "the queue cannot be read: "},
        {"queue --remove ALL", 1, "the queue cannot be read: "},
        {"patches", 1, "holds no list"},
    });
    client.setRefuse(true);
    put(keys::settings.installation.deploymentQueue, json::array());
    expectOneLineEach({{"queue --push ALL", 3, "unreachable"}});
}

TEST_F(DeploymentCommandsTest, workOnTheQueueInItsOrder)
{
    EXPECT_EQ(call("queue").output, "the queue is empty\n");
    for (const auto* descriptor : {"ALL", "PRODUCT=Sample Reader", "all"})
        EXPECT_EQ(call("queue --push", descriptor).code, 0);
    expectOneLineEach({{"queue --push ALL", 1, "\"ALL\" is in the queue already"}});
    EXPECT_THAT(queued(), ElementsAre("ALL", "PRODUCT=Sample Reader", "all"));
    const auto listed = call("queue").output;
    EXPECT_THAT(listed.substr(0, listed.find('\n')), testing::MatchesRegex("\\d+-\\d+-\\d+ \\d+:\\d+:\\d+  ALL"));
    EXPECT_THAT(listed, HasSubstr("  PRODUCT=Sample Reader\n"));
    EXPECT_THAT(listed, testing::EndsWith("  all  (means no update)\n"));
    EXPECT_EQ(json::parse(call("--json status").output).at("store").at("queue"), 3);
    EXPECT_EQ(call("queue --pop").output, "took ALL\n");
    EXPECT_EQ(call("queue --remove all").code, 0);
    EXPECT_THAT(queued(), ElementsAre("PRODUCT=Sample Reader"));
}

TEST_F(DeploymentCommandsTest, loseNothingWhenManyWorkOnTheQueue)
{
    // Leaves time between a reading and the writing that goes with it.
    client.setDelay(std::chrono::milliseconds(100));
    std::vector<ChildProcess> pushers;
    for (const std::string id : {"A", "B", "C", "D", "E", "F"})
        pushers.push_back(start("queue --push ID=" + id));
    for (const auto& pusher : pushers)
        EXPECT_EQ(pusher.wait(), 0u) << pusher.errors();
    EXPECT_THAT(queued(), testing::UnorderedElementsAre("ID=A", "ID=B", "ID=C", "ID=D", "ID=E", "ID=F"));
}

TEST_F(DeploymentCommandsTest, showThePublishedPatches)
{
    EXPECT_EQ(call("patches").output, "nothing was published yet\n");
    put(keys::settings.currentStatus.patchesToInstall, json::array());
    EXPECT_EQ(call("patches").output, "no patches to install\n");
    put(keys::settings.currentStatus.patchesToInstall,
        {{{"user_friendly_update_name", "L\xC3\xA9o 2"}, {"product_name", "Reader"}, {"severity", 1},
             {"status", {{"value", "installation_failed"}, {"code", "17"}}}},
            {{"update_name", "kb"}, {"severity", 3}, {"status", {{"value", "file_downloading"}}}}});
    EXPECT_EQ(call("patches").output, "NAME   PRODUCT  SEVERITY  STATE                CODE\n"
                                      "L\xC3\xA9o 2  Reader   critical  installation_failed  17\n"
                                      "kb              3         file_downloading\n");
    EXPECT_EQ(support::parseLines(call("--json patches").output).size(), 2u);
}

TEST_F(DeploymentCommandsTest, followThePublishedPatches)
{
    put(keys::settings.currentStatus.patchesToInstall, json::array());
    const auto follower = start("--json patches --follow --count 2");
    for (int serial = 0; !follower.wait(std::chrono::milliseconds(10)); ++serial)
        put(keys::settings.currentStatus.patchesToInstall, {{{"update_name", std::to_string(serial)}}});
    const auto shown = support::parseLines(follower.output());
    ASSERT_EQ(shown.size(), 2u) << follower.output();
    EXPECT_NE(shown[0].at("patches"), shown[1].at("patches"));
}

TEST_F(RebootTest, letsTheAgentFinishWhatWaits)
{
    GlobalAtom(bootAtom).create();
    const auto reboot = call("reboot");
    EXPECT_EQ(reboot.code, 0) << reboot.errors;
    EXPECT_THAT(reboot.output, HasSubstr("the agent finished the deployment"));
    EXPECT_TRUE(storage->isInstallationFinished());
    EXPECT_FALSE(GlobalAtom(bootAtom).exists());
    EXPECT_TRUE(pluginIsBack());
    EXPECT_THAT(call("reboot").output, HasSubstr("no deployment waited"));
    EXPECT_EQ(support::parseLines(support::readFile(folder.path() / "tarnag.runs.jsonl")).size(), 2u) << "one run";
}

TEST_F(RebootTest, holdsWhatThePluginAsksForOrPlaysIt)
{
    EXPECT_EQ(call("session-event 99 19").code, 0);
    EXPECT_EQ(json::parse(call("--json status").output).at("host").at("reboot_requests"), 1);
    EXPECT_THAT(host->output(), HasSubstr(R"("flags":2,"reason":19,"reboots":"hold")"));
    restartHost("--reboots play ");
    EXPECT_FALSE(storage->isInstallationFinished());
    EXPECT_EQ(events("reboot"), 0);
    devhost::host::DirectoryWatch changes(folder.path());
    const devhost::ipc::Signal never;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    EXPECT_EQ(call("session-event 99 19").code, 0);
    while (!storage->isInstallationFinished() && std::chrono::steady_clock::now() < deadline)
        changes.wait(never, 250);
    EXPECT_TRUE(storage->isInstallationFinished());
    // Answered once the reboot is over.
    EXPECT_TRUE(pluginIsBack());
    EXPECT_EQ(events("loaded"), 2);
    EXPECT_EQ(events("error"), 0);
}

TEST_F(RebootTest, bringsThePluginUpWhateverTheAgentDoes)
{
    support::writeFile(
        folder.path() / "tarnag.script.json", R"({"runs": [{}], "continue": [{"idle": true, "exitCode": 7}]})");
    expectOneLineEach({{"reboot", 1, "the agent did not finish the deployment: exit code 7"}});
    EXPECT_TRUE(pluginIsBack());
    std::filesystem::remove(folder.path() / "tarnag.exe");
    expectOneLineEach({{"reboot", 1, "cannot start "}});
    EXPECT_TRUE(pluginIsBack());
    EXPECT_FALSE(storage->isInstallationFinished());
}
