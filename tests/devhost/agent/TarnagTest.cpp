#include "agentfixture.h"
#include "keys/keycatalogue.h"

#include <algorithm>

namespace {

namespace keys = devhost::host::keys;
using devhost::host::keyOf;
using devhost::store::Value;
using nlohmann::json;

constexpr unsigned long accessViolation = 0xC0000005;
const std::string missingUpdates = keyOf(keys::status.scanning.lastScanning.missingUpdates);
const std::string restartNeeded = keyOf(keys::status.installation.lastInstallation.restartComputerNeeded);

struct TarnagTest : AgentTest {
    /// "start" with the arguments, "end" with the code.
    std::vector<std::string> journal() const
    {
        std::vector<std::string> lines;
        json pid;
        for (const json& entry : support::parseLines(support::readFile(folder.path() / "tarnag.runs.jsonl"))) {
            const bool starts = entry.at("event") == "start";
            EXPECT_TRUE(starts || entry.at("pid") == pid);
            pid = entry.at("pid");
            lines.push_back(starts ? "start " + entry.at("arguments").dump() : "end " + entry.at("exit_code").dump());
        }
        return lines;
    }
};

} // namespace

TEST_F(TarnagTest, carriesOutAndListsOneEntryPerStart)
{
    script(R"({"runs": [{"exitCode": 8}, {"crash": true}, {"exitCode": 1025}],
        "complete": [{"stdout": "hello", "idle": true}]})");
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
        const auto agent = start(row.arguments);
        EXPECT_EQ(agent.wait(), row.code);
        EXPECT_THAT(agent.output(), testing::HasSubstr(row.output));
    }
    EXPECT_THAT(journal(), testing::ElementsAre("start []", "end 8", R"(start ["-c","complete"])", "end 0",
                               R"(start ["--command=queue","--severity=important"])",
                               R"(start ["--command=queue","--severity="])", "end 1025", "start []", "end 1025"));
}

TEST_F(TarnagTest, writesItsResultsToTheStoreAndFailsWithoutOne)
{
    server.start();
    EXPECT_EQ(start().wait(), 0u);
    EXPECT_EQ(json::parse(client.get(missingUpdates)->asObject()).size(), 2u) << "the sample";

    script(
        R"({"runs": [{"missingUpdates": [{"update_id": "A"}], "exitCode": 0, "set": {")" + restartNeeded + R"(": true,
        "windows.tarnpatch.scanning.automatic.polling_interval": 5, "x.text": "\u20ac"}}]})");
    const auto scan = start();
    EXPECT_EQ(scan.wait(), 0u) << scan.errors();
    EXPECT_EQ(client.get(missingUpdates), Value::fromObject(R"([{"update_id":"A"}])"));
    EXPECT_EQ(client.get(restartNeeded), Value::fromBool(true));
    EXPECT_EQ(client.get("windows.tarnpatch.scanning.automatic.polling_interval"), Value::fromInt32(5));
    EXPECT_EQ(client.get("x.text"), Value::fromString("\xE2\x82\xAC"));

    server.stop();
    const auto lost = start();
    EXPECT_EQ(lost.wait(), 21u);
    EXPECT_THAT(lost.errors(), testing::StartsWith("tarnag: "));
    EXPECT_EQ(journal().back(), "end 21");
}

TEST_F(TarnagTest, refusesABadScriptOrCommandLineWithOneLine)
{
    script("{\"runs\": 1}");
    for (const auto* arguments : {L"", L"--frob"}) {
        const auto agent = start(arguments);
        EXPECT_EQ(agent.wait(), 2u);
        EXPECT_THAT(agent.errors(), testing::StartsWith("tarnag: "));
        EXPECT_EQ(std::ranges::count(agent.errors(), '\n'), 1) << agent.errors();
    }
}
