#include "rig.h"

namespace rig {
namespace {

using nlohmann::json;

class ScanRoadTest : public SystemTest {};

TEST_F(ScanRoadTest, leadsFromTheStoreKeyToTheAcknowledgement)
{
    script({json::object(), {{"missingUpdates", {{{"update_name", "KB1"}}, {{"update_name", "KB2"}}}}}});
    startHost();
    scan(1);
    EXPECT_EQ(agentStarts(), 2u);
    const auto list = client.get(missingUpdates);
    ASSERT_TRUE(list);
    EXPECT_EQ(json::parse(list->asObject()).size(), 2u) << list->text();
    waitForLog("Tarnag agent finished successfully.", 2);
    const std::string start = lastLog("tarnag.exe start timestamp: ");
    waitForValue(lastScan, Value::fromInt64(std::stoll(start.substr(start.find(": ") + 2))));
    EXPECT_EQ(lastLog("Start reason is: "), "Start reason is: 1");
    EXPECT_TRUE(lastLog("Starting process ").ends_with("tarnag.exe. Arguments: ")) << lastLog("Starting process ");
    EXPECT_EQ(logCount("Update a scanning remote operation status: 1"), 1u);
    EXPECT_EQ(stopHost(), 0u);
    EXPECT_NE(host->output().find("started"), std::string::npos) << host->output();
    EXPECT_NE(host->output().find("stopped"), std::string::npos) << host->output();
}

TEST_F(ScanRoadTest, triesABusyAgentAgainAfterAPause)
{
    script({json::object(), {{"exitCode", 8}}, {{"exitCode", 8}}, {{"exitCode", 8}}, json::object()});
    startHost();
    const auto before = std::chrono::steady_clock::now();
    scan(1);
    waitForAgentEnds(5);
    waitForLog("Tarnag agent finished successfully.", 2);
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::seconds(3)) << "three pauses of a second";
    EXPECT_EQ(agentStarts(), 5u);
    EXPECT_EQ(logCount("Update a scanning remote operation status: 1"), 4u);
    EXPECT_EQ(lastLog("Scheduling next try"), "Scheduling next try to run tarnag.exe (4/3600)");
    EXPECT_EQ(logCount("Tarnag agent finished successfully."), 2u);
}

TEST_F(ScanRoadTest, outlivesAnAgentThatIsMissingCrashesOrFails)
{
    script({json::object(), {{"crash", true}}, {{"exitCode", 10}}, {{"exitCode", 22}}, json::object()});
    startHost();
    removeAgent();
    setNumber(scanStart, 1);
    waitForLog("Failed to start tarnag.exe process.");
    EXPECT_EQ(number(scanAck), 0) << "nothing ran, so nothing is acknowledged";
    installAgent();
    const std::int64_t scanned = number(lastScan);
    for (std::int64_t request = 2; request <= 4; ++request)
        scan(request);
    waitForLog("Failed to start tarnpatch agent (tarnag.exe)", 4);
    EXPECT_EQ(lastLog(agentEnd), agentEnd + "22");
    EXPECT_EQ(number(lastScan), scanned) << "a failed run is no scan";
    scan(5);
    EXPECT_EQ(agentStarts(), 5u);
}

TEST_F(ScanRoadTest, acknowledgesWithoutAnAgentWhileTheFeatureIsOff)
{
    startHost();
    EXPECT_EQ(command("disable"), 0u);
    waitForValue(keyOf(status.enabled), Value::fromBool(false));
    const std::size_t starts = agentStarts();
    scan(7);
    EXPECT_EQ(agentStarts(), starts);
    EXPECT_EQ(command("enable"), 0u);
    waitForAgentEnds(starts + 1);
    EXPECT_EQ(lastLog("Start reason is: "), "Start reason is: 0");
    scan(3);
    EXPECT_EQ(agentStarts(), starts + 2) << "any new value is a request, a smaller one too";
}

TEST_F(ScanRoadTest, runsOnceMoreForAnyNumberOfStartsDuringARun)
{
    const Gate gate("once-more");
    script({json::object(), gate.run(), json::object()});
    startHost();
    setNumber(scanStart, 1);
    ASSERT_TRUE(gate.waitUntilStarted());
    const std::size_t requested = logCount("tarnag.exe start requested");
    client.set(keyOf(settings.scanning.excludeUpdatesByType), Value::fromString("a"));
    client.set(keyOf(settings.scanning.excludeUpdatesByRule), Value::fromString("b"));
    waitForLog("tarnag.exe start requested", requested + 2);
    gate.release();
    waitForAgentEnds(3);
    // A third run would come before this one and make it the fifth.
    scan(2);
    EXPECT_EQ(agentStarts(), 4u);
}

} // namespace
} // namespace rig
