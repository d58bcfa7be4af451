#include "rig.h"

#include "host/agentdirectory.h"

namespace rig {
namespace {

class BadInputTest : public SystemTest {};

TEST_F(BadInputTest, valuesOfTheWrongTypeCountAsMissingAndAreHealed)
{
    startStoreAlone();
    const auto& scanning = settings.scanning.automatic;
    const auto& startup = scanning.scanningOnSystemStartup;
    const auto& installation = settings.installation;
    const vx::tarn::KeyRow* const rows[] = {&settings.enabled, &scanning.maximumRescanningPeriod,
        &scanning.pollingInterval, &startup.enabled, &startup.delay, &startup.randomizationInterval,
        &installation.inProgress, &installation.deploymentQueue, &installation.completion.wait,
        &installation.completion.timeout, &installation.completion.timestamp, &status.enabled, &lastScan, &scanStart,
        &scanAck, &status.installation.lastInstallation.restartComputerNeeded};
    for (const auto* row : rows)
        client.set(keyOf(*row), Value::fromString("garbage"));
    startHost();
    EXPECT_GE(logCount("Failed to read a bool value: windows.tarnpatch.enabled"), 1u);
    EXPECT_GE(logCount("Setting 'windows.tarnpatch.enabled' not found - fallback to default value"), 1u);
    client.set(keyOf(scanStart), Value::fromString("changed"));
    waitForLog("No need to start scanning. start=0, ack=0");
    client.remove(keyOf(scanStart));
    client.remove(keyOf(scanAck));
    scan(4);
}

TEST_F(BadInputTest, anInstallationFolderMayHaveBlanks)
{
    startHost();
    installAgent(folder.path() / "with blanks");
    devhost::host::writeAgentDirectory(folder.path() / "with blanks");
    // The path stands in the command line without quotes, and the agent knows its own.
    scan(2);
    EXPECT_EQ(lastLog(agentEnd), agentEnd + "0");
}

} // namespace
} // namespace rig
