#include "rig.h"

#include "tarnhd/wusstopper/triggerkey.h"
#include "vxtl/globalmutex.h"
#include "vxtl/registry.h"

#include <mutex>

namespace rig {
namespace {

class LifecycleTest : public SystemTest {};

TEST_F(LifecycleTest, aStopLeavesTheRunningAgentAlone)
{
    const Gate gate("left-alone");
    script({json::object(), gate.run()});
    startHost();
    EXPECT_GT(get(lastScan), 0);
    put(scanStart, 1);
    ASSERT_TRUE(gate.waitUntilStarted());
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(stopHost(), 0u);
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(8));
    EXPECT_EQ(logCount("Thread stop event detected while tarnag running."), 1u);
    EXPECT_EQ(logCount("Tarnag agent finished successfully."), 2u) << "the start time was recorded";
    EXPECT_EQ(agentStarts(), 2u);
}

TEST_F(LifecycleTest, aStopEndsTheWaitForAMutexThatAnotherProcessHolds)
{
    const auto& install = settings.remoteOperations.installUpdates;
    std::int64_t request = 0;
    for (const std::string name : {"Global\\ScanMutex{450C4D2D-AE20-440a-9AAA-F770900831AD}",
             "TARN - DEPLOYMENT QUEUE - {D8AFE2BA-BD53-4D73-81D7-C8EF0DC5E27E}"}) {
        SCOPED_TRACE(name);
        startHost();
        client.remove(keyOf(install.result));
        put(install.updatesToInstall, "ALL");
        {
            vx::sync::GlobalMutex mutex(vx::str::fromUtf8(name));
            const std::lock_guard lock(mutex);
            put(install.start, ++request);
            waitForValue(install.result, "failed");
            EXPECT_EQ(stopHost(), 0u);
        }
        EXPECT_GE(logCount("Stopped while waiting for the mutex " + name), 1u);
    }
}

TEST_F(LifecycleTest, onlyTheFirstRunAfterABootScansOnStartUp)
{
    startStoreAlone();
    put(settings.scanning.automatic.scanningOnSystemStartup.delay, 0);
    for (const std::size_t boots : {1, 1, 2}) {
        if (boots == 2) {
            EXPECT_EQ(command("forget-boot"), 0u);
        }
        startHost();
        waitForLog("Start after reboot scan if expired", boots);
        EXPECT_EQ(stopHost(), 0u);
        EXPECT_EQ(logCount("Start after reboot scan if expired"), boots);
        EXPECT_EQ(logCount("It's a first run after reboot."), boots);
    }
}

TEST_F(LifecycleTest, rebootsWhenTheTimeSinceTheRequestIsOver)
{
    const auto registry = vx::registry::createWin32Registry();
    startHost(Wait::ForProcessing, "--reboots play");
    put(settings.installation.reboot.askUser, false);
    put(settings.installation.reboot.forceInSeconds, 0);
    waitForLog("WUS stopper trigger key found as: 0");
    registry->createKey(vx::tarn::triggerKey)->setInt64Value(vx::tarn::triggerTimeValue, 1);
    waitForLog("ExitWindowsEx for reboot successfully completed.");
    waitForLog("Run processing", 2);
    EXPECT_EQ(logCount("WUS poll thread exited"), 1u);
    EXPECT_FALSE(registry->doesKeyExist(vx::tarn::triggerKey)) << "the request was of the boot before";
    EXPECT_EQ(stopHost(), 0u);
}

TEST_F(LifecycleTest, worksInHostsOfEveryRecordSize)
{
    for (const char* size : {"0", "24", "28", "32", "36"}) {
        SCOPED_TRACE(size);
        startHost(Wait::ForProcessing, std::string("--size ") + size);
        EXPECT_EQ(command("resume-event"), std::string(size) == "28" ? 1u : 0u);
        EXPECT_EQ(stopHost(), 0u);
    }
}

} // namespace
} // namespace rig
