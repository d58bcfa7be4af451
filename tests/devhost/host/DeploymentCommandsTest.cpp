#include "childprocess.h"
#include "common/factory/commonfactory.h"
#include "common/globalatom/globalatom.h"
#include "common/patchstorage/ipatchstorage.h"
#include "keys/keycatalogue.h"
#include "store/client/client.h"
#include "store/server/server.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sstream>

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

/// tarnhost.exe on an instance of its own.
class DeploymentCommandsTest : public testing::Test {
protected:
    struct Outcome {
        unsigned long code;
        std::string output;
        std::string errors;
    };

    ChildProcess start(const std::wstring& arguments)
    {
        return {"tarnhost.exe", L"--instance " + instance + L" " + arguments, folder.path()};
    }

    Outcome call(const std::wstring& arguments)
    {
        const auto child = start(arguments);
        const auto code = child.wait();
        return {code.value_or(999), child.output(), child.errors()};
    }

    void startStore()
    {
        server.emplace((folder.path() / "store.json").native(), instance);
        server->start();
    }

    void put(const vx::tarn::KeyRow& key, const json& value)
    {
        client.set(keyOf(key), store::Value::fromObject(value.dump()));
    }

    std::vector<std::string> queued()
    {
        std::vector<std::string> descriptors;
        std::istringstream lines(call(L"--json queue").output);
        for (std::string line; std::getline(lines, line);)
            descriptors.push_back(json::parse(line).at("descriptor"));
        return descriptors;
    }

    void expectError(const std::wstring& arguments, unsigned long code, const std::string& line)
    {
        SCOPED_TRACE(line);
        const auto outcome = call(arguments);
        EXPECT_EQ(outcome.code, code);
        EXPECT_THAT(outcome.errors, testing::StartsWith("tarnhost: "));
        EXPECT_THAT(outcome.errors, HasSubstr(line));
        EXPECT_EQ(std::ranges::count(outcome.errors, '\n'), 1) << outcome.errors;
    }

    support::TemporaryFolder folder;
    const std::wstring instance = folder.path().filename().native();
    std::optional<store::Server> server;
    store::Client client{instance};
};

/// A host on the recording plug-in, with an agent and a deployment that waits for a reboot.
class RebootTest : public DeploymentCommandsTest {
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
        host.emplace(
            start(L"run --plugin \"" + (support::programFolder() / "host-test-plugin.dll").native() + L"\" --store \"" +
                  (folder.path() / "store.json").native() + L"\" --agent-dir \"" + folder.path().native() + L"\""));
        EXPECT_EQ(call(L"status --wait 60").code, 0u) << host->errors();
    }
    ~RebootTest() override
    {
        call(L"stop");
        storage->clear();
    }

    std::string pluginState() { return json::parse(call(L"--json status").output).at("host").at("state"); }

    std::shared_ptr<IPatchStorage> storage = CommonFactory().createPatchStorage();
    std::optional<ChildProcess> host;
};

} // namespace

TEST_F(DeploymentCommandsTest, answerMistakesWithOneLineAndACode)
{
    expectError(L"queue", 3, "unreachable");
    expectError(L"queue --push ALL", 3, "unreachable");
    expectError(L"patches", 3, "unreachable");
    expectError(L"patches --follow", 3, "unreachable");
    expectError(L"reboot", 3, "no host of the instance");
    expectError(L"queue --pop --push ALL", 2, "--p");
    expectError(L"patches --count 2", 2, "--follow");
    startStore();
    expectError(L"queue --pop", 1, "the queue is empty");
    expectError(L"queue --remove ALL", 1, "\"ALL\" is not in the queue");
    put(keys::settings.installation.deploymentQueue, {{"a", 1}});
    for (const auto* arguments : {L"queue", L"queue --pop", L"queue --push ALL", L"queue --remove ALL"})
        expectError(arguments, 1, "the queue cannot be read: ");
    put(keys::settings.currentStatus.patchesToInstall, {{"a", 1}});
    expectError(L"patches", 1, "holds no list");
    client.setRefuse(true);
    put(keys::settings.installation.deploymentQueue, json::array());
    expectError(L"queue --push ALL", 3, "unreachable");
}

TEST_F(DeploymentCommandsTest, workOnTheQueueInItsOrder)
{
    startStore();
    EXPECT_EQ(call(L"queue").output, "the queue is empty\n");
    for (const auto* descriptor : {L"ALL", L"\"PRODUCT=Sample Reader\"", L"all"})
        EXPECT_EQ(call(std::wstring(L"queue --push ") + descriptor).code, 0u);
    expectError(L"queue --push ALL", 1, "\"ALL\" is in the queue already");
    EXPECT_THAT(queued(), ElementsAre("ALL", "PRODUCT=Sample Reader", "all"));
    const auto listed = call(L"queue").output;
    EXPECT_THAT(listed.substr(0, listed.find('\n')), testing::MatchesRegex("\\d+-\\d+-\\d+ \\d+:\\d+:\\d+  ALL"));
    EXPECT_THAT(listed, HasSubstr("  PRODUCT=Sample Reader\n"));
    EXPECT_THAT(listed, testing::EndsWith("  all  (means no update)\n"));
    EXPECT_EQ(json::parse(call(L"--json status").output).at("store").at("queue"), 3);
    EXPECT_EQ(call(L"queue --pop").output, "took ALL\n");
    EXPECT_EQ(call(L"queue --remove all").code, 0u);
    EXPECT_THAT(queued(), ElementsAre("PRODUCT=Sample Reader"));
}

TEST_F(DeploymentCommandsTest, loseNothingWhenManyWorkOnTheQueue)
{
    startStore();
    // Leaves time between a reading and the writing that goes with it.
    client.setDelay(std::chrono::milliseconds(100));
    std::vector<ChildProcess> pushers;
    for (const auto* id : {L"A", L"B", L"C", L"D", L"E", L"F"})
        pushers.push_back(start(std::wstring(L"queue --push ID=") + id));
    for (const auto& pusher : pushers)
        EXPECT_EQ(pusher.wait(), 0u) << pusher.errors();
    EXPECT_THAT(queued(), testing::UnorderedElementsAre("ID=A", "ID=B", "ID=C", "ID=D", "ID=E", "ID=F"));
}

TEST_F(DeploymentCommandsTest, showThePublishedPatches)
{
    startStore();
    EXPECT_EQ(call(L"patches").output, "nothing was published yet\n");
    put(keys::settings.currentStatus.patchesToInstall, json::array());
    EXPECT_EQ(call(L"patches").output, "no patches to install\n");
    put(keys::settings.currentStatus.patchesToInstall,
        {{{"user_friendly_update_name", "L\xC3\xA9o 2"}, {"product_name", "Reader"}, {"severity", 1},
             {"status", {{"value", "installation_failed"}, {"code", "17"}}}},
            {{"update_name", "kb"}, {"severity", 3}, {"status", {{"value", "file_downloading"}}}}});
    EXPECT_EQ(call(L"patches").output, "NAME   PRODUCT  SEVERITY  STATE                CODE\n"
                                       "L\xC3\xA9o 2  Reader   critical  installation_failed  17\n"
                                       "kb              3         file_downloading\n");
    EXPECT_EQ(std::ranges::count(call(L"--json patches").output, '\n'), 2);
}

TEST_F(DeploymentCommandsTest, followThePublishedPatches)
{
    startStore();
    put(keys::settings.currentStatus.patchesToInstall, json::array());
    const auto follower = start(L"--json patches --follow --count 2");
    for (int serial = 0; !follower.wait(std::chrono::milliseconds(10)); ++serial)
        put(keys::settings.currentStatus.patchesToInstall, {{{"update_name", std::to_string(serial)}}});
    std::istringstream lines(follower.output());
    std::vector<json> shown;
    for (std::string line; std::getline(lines, line);)
        shown.push_back(json::parse(line).at("patches"));
    ASSERT_EQ(shown.size(), 2u) << follower.output();
    EXPECT_NE(shown[0], shown[1]);
}

TEST_F(RebootTest, letsTheAgentFinishWhatWaits)
{
    GlobalAtom(bootAtom).create();
    const auto reboot = call(L"reboot");
    EXPECT_EQ(reboot.code, 0u) << reboot.errors;
    EXPECT_THAT(reboot.output, HasSubstr("the agent finished the deployment"));
    EXPECT_TRUE(storage->isInstallationFinished());
    EXPECT_FALSE(GlobalAtom(bootAtom).exists());
    EXPECT_EQ(pluginState(), "started");
    EXPECT_THAT(call(L"reboot").output, HasSubstr("no deployment waited"));
    EXPECT_EQ(std::ranges::count(support::readFile(folder.path() / "tarnag.runs.jsonl"), '\n'), 2) << "one run";
}

TEST_F(RebootTest, bringsThePluginUpWhateverTheAgentDoes)
{
    support::writeFile(
        folder.path() / "tarnag.script.json", R"({"runs": [{}], "continue": [{"idle": true, "exitCode": 7}]})");
    expectError(L"reboot", 1, "the agent did not finish the deployment: exit code 7");
    EXPECT_EQ(pluginState(), "started");
    std::filesystem::remove(folder.path() / "tarnag.exe");
    expectError(L"reboot", 1, "cannot start ");
    EXPECT_EQ(pluginState(), "started");
    EXPECT_FALSE(storage->isInstallationFinished());
}
