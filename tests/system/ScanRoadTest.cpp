#include "rig.h"

namespace rig {
namespace {

class ScanRoadTest : public SystemTest {};

TEST_F(ScanRoadTest, leadsFromTheStoreKeyToTheAcknowledgement)
{
    script({json::object(), {{"missingUpdates", {{{"update_name", "KB1"}}, {{"update_name", "KB2"}}}}}});
    startHost();
    scan(1);
    EXPECT_EQ(agentStarts(), 2u);
    EXPECT_EQ(get(missingUpdates).size(), 2u) << get(missingUpdates);
    waitForLog("Tarnag agent finished successfully.", 2);
    const std::string start = lastLog("tarnag.exe start timestamp: ");
    waitForValue(lastScan, std::stoll(start.substr(start.find(": ") + 2)));
    EXPECT_EQ(lastLog("Start reason is: "), "Start reason is: 1");
    EXPECT_TRUE(lastLog("Starting process ").ends_with("tarnag.exe. Arguments: ")) << lastLog("Starting process ");
    EXPECT_EQ(logCount("Update a scanning remote operation status: 1"), 1u);
    EXPECT_EQ(stopHost(), 0u);
    EXPECT_NE(host->output().find("started"), std::string::npos) << host->output();
    EXPECT_NE(host->output().find("stopped"), std::string::npos) << host->output();
}

TEST_F(ScanRoadTest, outlivesAnAgentThatCrashesOrFailsAndTriesABusyOneAgainAfterAPause)
{
    const json busy{{"exitCode", 8}};
    script(
        {json::object(), {{"crash", true}}, {{"exitCode", 10}}, {{"exitCode", 22}}, busy, busy, busy, json::object()});
    startHost();
    const json scanned = get(lastScan);
    for (std::int64_t request = 1; request <= 3; ++request)
        scan(request);
    waitForLog("Failed to start tarnpatch agent (tarnag.exe)", 3);
    EXPECT_EQ(lastLog(agentEnd), agentEnd + "22");
    EXPECT_EQ(get(lastScan), scanned) << "a failed run is no scan";
    const auto before = std::chrono::steady_clock::now();
    scan(4);
    waitForLog("Tarnag agent finished successfully.", 2);
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::seconds(3)) << "three pauses of a second";
    EXPECT_EQ(agentStarts(), 8u);
    EXPECT_EQ(logCount("Update a scanning remote operation status: 4"), 4u);
    EXPECT_EQ(lastLog("Scheduling next try"), "Scheduling next try to run tarnag.exe (4/3600)");
}

} // namespace
} // namespace rig
