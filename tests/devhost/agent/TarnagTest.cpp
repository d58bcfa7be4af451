#include "host/agentdirectory.h"
#include "stage.h"

#include <algorithm>

namespace {

using namespace support;

constexpr unsigned long accessViolation = 0xC0000005;

struct TarnagTest : StageTest {
    TarnagTest() { installAgent(); }

    /// Each start as "arguments: exit code".
    Texts journal() const
    {
        Texts lines;
        for (const auto& start : devhost::host::readAgentStarts(agentFolder))
            lines.push_back(start.arguments + ":" + (start.exitCode ? " " + std::to_string(*start.exitCode) : ""));
        return lines;
    }
};

} // namespace

TEST_F(TarnagTest, carriesOutAndListsOneEntryPerStart)
{
    const json output{{"stdout", "hello"}, {"idle", true}};
    script({{{"exitCode", 8}}, {{"crash", true}}, {{"exitCode", 1025}}}, {{"complete", json::array({output})}});
    const struct {
        const wchar_t* arguments;
        unsigned long code;
        const char* output;
    } rows[] = {
        {L"", 8, ""},
        {L"-c complete", 0, "hello"},
        {L"--command=queue --severity=important", accessViolation, ""},
        {L"--command=queue --severity=", 1025, ""},
        {L"", 1025, ""},
    };
    for (const auto& row : rows) {
        const auto started = agent(row.arguments);
        EXPECT_EQ(started.wait(), row.code);
        EXPECT_THAT(started.output(), testing::HasSubstr(row.output));
    }
    EXPECT_THAT(journal(), testing::ElementsAre(": 8", "-c complete: 0",
                               "--command=queue --severity=important:", "--command=queue --severity=: 1025", ": 1025"));
}

TEST_F(TarnagTest, writesItsResultsToTheStoreAndFailsWithoutOne)
{
    const auto& missingUpdates = status.scanning.lastScanning.missingUpdates;
    const auto& restartNeeded = status.installation.lastInstallation.restartComputerNeeded;
    server.start();
    EXPECT_EQ(agent().wait(), 0u);
    EXPECT_EQ(get(missingUpdates).size(), 2u) << "the sample";

    script(
        {{{"missingUpdates", {{{"update_id", "A"}}}}, {"set", {{keyOf(restartNeeded), true}, {"x", "\xE2\x82\xAC"}}}}});
    const auto scan = agent();
    EXPECT_EQ(scan.wait(), 0u) << scan.errors();
    EXPECT_EQ(get(missingUpdates).dump(), R"([{"update_id":"A"}])");
    EXPECT_EQ(get(restartNeeded), true);
    EXPECT_EQ(client.get("x"), Value::fromString("\xE2\x82\xAC"));

    server.stop();
    const auto lost = agent();
    EXPECT_EQ(lost.wait(), 21u);
    EXPECT_THAT(lost.errors(), testing::StartsWith("tarnag: "));
    EXPECT_EQ(journal().back(), ": 21");
}

TEST_F(TarnagTest, refusesABadScriptOrCommandLineWithOneLine)
{
    writeFile(agentFolder / "tarnag.script.json", "{\"runs\": 1}");
    for (const auto* arguments : {L"", L"--frob"}) {
        const auto started = agent(arguments);
        EXPECT_EQ(started.wait(), 2u);
        EXPECT_THAT(started.errors(), testing::StartsWith("tarnag: "));
        EXPECT_EQ(std::ranges::count(started.errors(), '\n'), 1) << started.errors();
    }
}
