#include "rig.h"

#include "logging-backend/configuration.h"
#include "vxtl/registry.h"
#include "vxtl/scopeexit.h"

namespace rig {
namespace {

using namespace devhost::store;

const auto& install = settings.remoteOperations.installUpdates;
const auto& published = settings.currentStatus.patchesToInstall;

/// Each case without recovery, where it shows what is lost, and with it.
class RecoveryTest : public SystemTest, public testing::WithParamInterface<bool> {
protected:
    RecoveryTest()
    {
        startStoreAlone();
        put(settings.recovery.enabled, isOn());
    }

    static bool isOn() { return GetParam(); }
    /// That the scan request is served by a run of its own, or by none.
    void expectServed(std::int64_t request, std::size_t starts)
    {
        if (isOn())
            waitForValue(scanAck, request);
        // The plug-in answers this change after all that came before it.
        put(settings.scanning.automatic.pollingInterval, 11);
        waitForLog("Setup action scheduler.");
        EXPECT_EQ(get(scanAck) == request, isOn());
        EXPECT_EQ(agentStarts(), isOn() ? starts + 1 : starts);
        EXPECT_EQ(logCount("Recovery: ") > 0, isOn());
    }
};

INSTANTIATE_TEST_SUITE_P(Recovery, RecoveryTest, testing::Bool(),
    [](const testing::TestParamInfo<bool>& row) { return row.param ? "on" : "off"; });

TEST_P(RecoveryTest, makesASubscriptionThatFailed)
{
    client.addFault({Operation::Subscribe, ErrorCode::AccessDenied, 2, keyOf(scanStart)});
    startHost();
    if (isOn())
        waitForLog("Recovery: the subscription of " + keyOf(scanStart) + " is made.");
    put(scanStart, 1);
    expectServed(1, 1);
}

TEST_P(RecoveryTest, answersAChangeThatMetAnUnreachableStore)
{
    startHost();
    client.addFault({Operation::Get, ErrorCode::Unreachable, 1, keyOf(scanStart)});
    put(scanStart, 1);
    waitForLog("No need to start scanning. start=0, ack=0");
    expectServed(1, 1);
}

TEST_P(RecoveryTest, writesWhatWasKeptDuringAnOutage)
{
    const Gate gate("kept");
    script({json::object(), gate.run(), json::object()});
    startHost();
    put(scanStart, 1);
    ASSERT_TRUE(gate.waitUntilStarted());
    killStore();
    gate.release();
    waitForLog("Failed to set int64 value: windows.tarnpatch.remote_operations.scan_for_updates.ack");
    startStoreAlone();
    if (isOn())
        waitForValue(scanAck, 1);
    EXPECT_EQ(get(scanAck) == 1, isOn());
    EXPECT_EQ(agentStarts(), 2u);
}

TEST_P(RecoveryTest, servesARequestFromBeforeTheStart)
{
    put(scanStart, 1);
    startHost();
    if (isOn())
        waitForValue(scanAck, 1);
    EXPECT_EQ(get(scanAck) == 1, isOn());
    EXPECT_EQ(logCount("Recovery: the remote scan 1 was found open"), isOn() ? 1u : 0u);
}

TEST_P(RecoveryTest, acknowledgesBothRequestsThatCameDuringARun)
{
    const Gate gate("both");
    script({gate.run(), json::object()});
    startHost(Wait::ForProcessing);
    ASSERT_TRUE(gate.waitUntilStarted());
    const std::size_t asked = logCount("Scan start time: ");
    put(scanStart, 1);
    waitForLog("Scan start time: ", asked + 1);
    put(install.updatesToInstall, "ALL");
    put(install.start, 1);
    waitForLog("Scan start time: ", asked + 3);
    gate.release();
    waitForValue(install.ack, 1);
    waitForAgentEnds(2);
    if (isOn())
        waitForValue(scanAck, 1);
    EXPECT_EQ(get(scanAck) == 1, isOn());
    EXPECT_EQ(agentStarts(), 2u) << "one run for both";
}

TEST_P(RecoveryTest, publishesWhatChangesDuringAPass)
{
    const auto updates = [](int count) {
        json list = json::array();
        for (int i = 0; i < count; ++i)
            list.push_back({{"update_name", "KB" + std::to_string(i)}});
        return list;
    };
    const auto logging = vx::registry::createWin32Registry()->createKey(
        std::wstring(L"HKEY_LOCAL_MACHINE\\") + VxQrlLogging::loggingKey);
    logging->setInt32Value(L"LogLevel", 6);
    const vx::ScopeExit usual([&] { logging->setInt32Value(L"LogLevel", 4); });
    putQueue({"ALL"});
    startHost();
    // The pass reads the queue, the updates and the log, one line each.
    const std::string read = "name: " + keyOf(status.installation.log.entries);
    const std::size_t before = logCount(read);
    client.setDelay(std::chrono::milliseconds(500));
    put(missingUpdates, updates(1));
    waitForLog(read, before + 1);
    put(missingUpdates, updates(2));
    const auto count = [&] { return get(published).size(); };
    waitFor(storeFile.parent_path(), "one pass", [&] { return count() == 1; });
    client.setDelay(std::chrono::milliseconds(0));
    if (isOn())
        waitFor(storeFile.parent_path(), "one more pass", [&] { return count() == 2; });
    EXPECT_EQ(stopHost(), 0u);
    EXPECT_EQ(count(), isOn() ? 2u : 1u);
    EXPECT_EQ(logCount("Recovery: something has changed during the pass"), isOn() ? 1u : 0u);
}

} // namespace
} // namespace rig
