#include "common/patches/updateid.h"
#include "stage.h"

namespace {

using namespace support;

struct TarnagTest : StageTest {
    TarnagTest() { installAgent(); }
    ChildProcess agent(const std::wstring& arguments = {}) const
    {
        return {agentFolder / "tarnag.exe", arguments, folder.path()};
    }
};

} // namespace

TEST_F(TarnagTest, writesWhatItsScriptSaysAndFailsWithoutAStore)
{
    const auto& restartNeeded = status.installation.lastInstallation.restartComputerNeeded;
    server.start();
    script({{{"set", {{keyOf(restartNeeded), true}, {"x", "\xE2\x82\xAC"}}}}});
    const auto scan = agent();
    EXPECT_EQ(scan.wait(), 0u) << scan.errors();
    EXPECT_EQ(get(restartNeeded), true);
    EXPECT_EQ(client.get("x"), Value::fromString("\xE2\x82\xAC"));

    server.stop();
    const auto lost = agent();
    EXPECT_EQ(lost.wait(), 21u);
    EXPECT_THAT(lost.errors(), testing::StartsWith("tarnag: "));
}

TEST_F(TarnagTest, takesPatchesToTheirStateAndItemsFromTheQueue)
{
    const auto& install = settings.remoteOperations.installUpdates;
    const auto& entries = status.installation.log.entries;
    const auto idOfB = vx::str::toUtf8(vx::tarn::common::deriveUpdateId(L"", L"", L"", L"B"));
    const struct {
        json members;
        Texts queued, log, left;
        const char* result;
    } rows[] = {
        {{{"stepMs", 0}}, {"ALL", "CRITICAL"}, {"A installation_completed", "X canceled", "B installation_completed"},
            {}, "success"},
        {{{"items", 1}, {"stepMs", 0}, {"states", {"file_downloading", "file_download_failed"}}},
            {"ID=" + idOfB, "CRITICAL"}, {"X canceled", "B file_download_failed"}, {"CRITICAL"}, "failed"},
    };
    server.start();
    put(status.scanning.lastScanning.missingUpdates,
        json::array({{{"update_name", "A"}, {"severity", 1}}, {{"update_name", "B"}}}));
    for (std::int64_t request = 1; const auto& row : rows) {
        SCOPED_TRACE(row.members.dump());
        putQueue(row.queued);
        put(install.start, request++);
        put(entries, {{{"update_name", "X"}, {"update_id", "x"}, {"status", {{"value", "canceled"}}}},
                         {{"update_name", "B"}, {"update_id", idOfB}, {"status", {{"value", "canceled"}}}}});
        script({{{"deploy", row.members}}});
        EXPECT_EQ(agent().wait(), 0u);
        Texts log;
        for (const json& entry : get(entries))
            log.push_back(
                entry.at("update_name").get<std::string>() + " " + entry.at("status").at("value").get<std::string>());
        EXPECT_EQ(log, row.log);
        EXPECT_EQ(queue(), row.left);
        EXPECT_EQ(get(install.result), row.result);
    }
}

TEST_F(TarnagTest, putsTheScheduledTasksWordIntoTheQueueOnce)
{
    server.start();
    for (int time = 0; time < 2; ++time)
        EXPECT_EQ(agent(L"--command=queue --severity=important").wait(), 0u);
    EXPECT_EQ(queue(), (Texts{"important"}));
    EXPECT_EQ(agent(L"--command=queue --severity=").wait(), 2u);
}
