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

TEST_F(TarnagTest, putsTheScheduledTasksWordIntoTheQueueOnce)
{
    server.start();
    for (int time = 0; time < 2; ++time)
        EXPECT_EQ(agent(L"--command=queue --severity=important").wait(), 0u);
    EXPECT_EQ(queue(), (Texts{"important"}));
    EXPECT_EQ(agent(L"--command=queue --severity=").wait(), 2u);
}
