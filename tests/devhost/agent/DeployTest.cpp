#include "common/factory/commonfactory.h"
#include "common/patches/updateid.h"
#include "common/patchstorage/ipatchstorage.h"
#include "stage.h"

namespace {

using namespace support;
using namespace vx::tarn::common;
using testing::ElementsAre;

const auto& install = settings.remoteOperations.installUpdates;
const auto& completion = settings.installation.completion;
const auto& logEntries = status.installation.log.entries;
const auto& restartNeeded = status.installation.lastInstallation.restartComputerNeeded;

std::string idOf(const std::wstring& name)
{
    return vx::str::toUtf8(deriveUpdateId(L"", L"", L"", name));
}

/// With an empty patch storage, and two missing updates in the store.
struct DeployTest : StageTest {
    DeployTest()
    {
        server.start();
        installAgent();
        storage->clear();
        put(status.scanning.lastScanning.missingUpdates,
            json::array({{{"update_name", "A"}, {"severity", 1}}, {{"update_name", "B"}}}));
    }
    ~DeployTest() override { storage->clear(); }

    /// For an open request; the log has an entry of another update and an old one of B.
    void deploy(const Texts& descriptors, const json& members)
    {
        putQueue(descriptors);
        put(install.start, 7);
        put(install.ack, 6);
        put(install.result, "");
        const auto canceled = [](const char* name, const std::string& id) -> json {
            return {{"update_name", name}, {"update_id", id}, {"status", {{"value", "canceled"}}}};
        };
        put(logEntries, {canceled("X", "x"), canceled("B", idOf(L"B"))});
        const json run{{"deploy", members}};
        script({run});
        EXPECT_EQ(agent().wait(), 0u);
    }
    /// First entries with name, state, its code and result.
    Texts log()
    {
        Texts lines;
        for (const auto& entry : get(logEntries)) {
            const json& state = entry.at("status");
            lines.push_back(entry.value("update_name", "?") + " " + state.value("value", "?") +
                            state.value("code", "") + " " + entry.value("installation_result", ""));
        }
        return lines;
    }

    std::shared_ptr<IPatchStorage> storage = CommonFactory().createPatchStorage();
};

} // namespace

TEST_F(DeployTest, takesPatchesToTheirStateAndItemsFromTheQueue)
{
    const struct {
        json members;
        Texts queued, log, left;
        std::string result;
    } rows[] = {
        {{{"stepMs", 0}}, {"ALL", "CRITICAL"},
            {"A installation_completed installation_success", "X canceled ",
                "B installation_completed installation_success"},
            {}, "success"},
        {{{"items", 2}, {"stepMs", 0}, {"code", "17"}, {"states", {"file_downloading", "file_download_failed"}},
             {"result", "download_win_error"}},
            {"ID=" + idOf(L"B"), "all", "CRITICAL"}, {"X canceled ", "B file_download_failed17 download_win_error"},
            {"CRITICAL"}, "failed"},
        {{{"reboot", true}}, {"all"}, {"X canceled ", "B canceled "}, {}, "success"},
        {{{"reboot", true}}, {}, {"X canceled ", "B canceled "}, {}, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.members.dump());
        deploy(row.queued, row.members);
        EXPECT_EQ(log(), row.log);
        EXPECT_EQ(queue(), row.left);
        EXPECT_EQ(get(install.result), row.result);
        EXPECT_EQ(get(install.ack), 6) << "the plug-in's business";
        EXPECT_EQ(get(completion.wait), nullptr);
        EXPECT_FALSE(storage->hasPatchStates());
    }
    for (const auto* command : {L"-c continue", L"-c complete"})
        EXPECT_EQ(agent(command).wait(), 0u);
    EXPECT_FALSE(storage->isInstallationFinished()) << "none was begun";
}

TEST_F(DeployTest, leavesARebootDeploymentForTheNextBootAndCompletesIt)
{
    deploy({"ALL"}, {{"reboot", true}, {"stepMs", 0}});
    EXPECT_THAT(log(), ElementsAre("A installation_will_continue_after_reboot installation_unknown", "X canceled ",
                           "B installation_will_continue_after_reboot installation_unknown"));
    EXPECT_TRUE(get(restartNeeded) == true && get(settings.installation.inProgress) == true);
    const auto age = std::time(nullptr) - get(completion.timestamp).get<std::int64_t>();
    EXPECT_TRUE(age >= 0 && age < 300) << age;
    EXPECT_FALSE(storage->isInstallationFinished());

    EXPECT_EQ(agent(L"-c continue").wait(), 0u);
    EXPECT_TRUE(storage->isInstallationFinished());
    // The second one is reported as failed meanwhile.
    PatchStateReport failed;
    failed.patchId = 2;
    failed.status = PatchStateTarget::Failed;
    failed.failure = true;
    storage->addPatchState({ReportEventType::OfflinePatchStatus, failed, 0, {}});
    EXPECT_EQ(agent(L"-c complete").wait(), 0u);
    EXPECT_THAT(log(), ElementsAre("A installation_completed installation_success", "X canceled ",
                           "B installation_failed installation_error"));
    EXPECT_EQ(get(restartNeeded), false);
    EXPECT_FALSE(storage->hasPatchStates());
}

TEST_F(DeployTest, deploysWhatItFoundWithoutAScript)
{
    putQueue({"GUID=6E2C4C1B-9A3F-4D55-8C1E-3B0A7F2D9102"});
    EXPECT_EQ(agent().wait(), 0u);
    EXPECT_THAT(log(), ElementsAre("sample-player-7.0.3.msi installation_completed installation_success"));
    EXPECT_THAT(queue(), testing::IsEmpty());
}
