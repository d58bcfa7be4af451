#include "rig.h"

namespace rig {
namespace {

using namespace devhost::store;
using namespace std::chrono_literals;

class StoreOutageTest : public SystemTest {};

TEST_F(StoreOutageTest, aPlugInThatStartsDuringAnOutageWaitsForItsEnd)
{
    startStoreAlone();
    put(devhost::host::keys::host.lastSuccessfulUpdateTimestamp, 1);
    killStore();
    host.emplace(tarnhost("run --no-store --no-profile"));
    EXPECT_FALSE(host->wait(10s)) << "the host ended: " << host->output() << host->errors();
    EXPECT_EQ(logCount("Run processing"), 0u);
    startStoreAlone();
    waitForLog("Run processing");
    waitForAgentEnds(1);
    scan(1);
}

TEST_F(StoreOutageTest, writesMadeMeanwhileArriveWhenTheStoreIsBack)
{
    const Gate gate("outage");
    script({json::object(), gate.run(), json::object()});
    startStoreAlone();
    startHost();
    put(scanStart, 1);
    ASSERT_TRUE(gate.waitUntilStarted());
    killStore();
    gate.release();
    waitForLog("Update a scanning remote operation status: 1");
    waitForLog("Failed to set int64 value: windows.tarnpatch.remote_operations.scan_for_updates.ack");
    startStoreAlone();
    EXPECT_NE(get(scanAck), 1) << "the write is pending";
    put(settings.scanning.automatic.pollingInterval, 11);
    waitForValue(scanAck, 1);
    scan(2);
}

TEST_F(StoreOutageTest, runsAnewAfterEachStopDuringAnOutage)
{
    startStoreAlone();
    startHost();
    // The stop can't cancel the subscriptions, so the client library notifies them once the store is back: into a
    // plug-in that is gone. Its module stays for that, and the next start finds all that the earlier one has left.
    for (int cycle = 1; cycle <= 3; ++cycle) {
        SCOPED_TRACE(cycle);
        const auto count = static_cast<std::size_t>(cycle);
        killStore();
        EXPECT_EQ(command("restart"), 0u);
        waitForLog("Failed to unsubscribe from property: ", 20 * count);
        startStoreAlone();
        ASSERT_NO_FATAL_FAILURE(waitForLog("Run processing", count + 1));
        scan(cycle);
        put(settings.scanning.automatic.pollingInterval, 10 + cycle);
        waitForLog("Setup action scheduler.", count);
    }
    EXPECT_EQ(stopHost(), 0u);
    EXPECT_EQ(logCount("Setup action scheduler."), 3u) << "each change reached one plug-in";
    EXPECT_EQ(logCount("Processing stopped"), 4u);
    EXPECT_EQ(logCount("LOGGING STARTED"), 1u) << "it was never unloaded";
}

TEST_F(StoreOutageTest, survivesEveryErrorCodeOnEveryKindOfCall)
{
    startHost();
    std::int64_t request = 0;
    for (int code = 1; code <= 25; ++code) {
        for (const Operation operation : {Operation::Get, Operation::Set}) {
            SCOPED_TRACE(vx::toText(operation) + " " + std::to_string(code));
            client.addFault({operation, static_cast<ErrorCode>(code), 9, {}});
            put(scanStart, ++request);
            client.clearFaults();
            // The next good request is served, whatever became of the faulty one.
            scan(++request);
            ASSERT_FALSE(host->wait(0ms));
        }
    }
}

TEST_F(StoreOutageTest, goesOnWithoutTheKeysItCannotSubscribeTo)
{
    startStoreAlone();
    client.addFault({Operation::Subscribe, ErrorCode::AccessDenied, 2, keyOf(settings.enabled)});
    startHost();
    EXPECT_EQ(logCount("Failed to subscribe to a property windows.tarnpatch.enabled. Reason: "), 1u);
    scan(1);
}

} // namespace
} // namespace rig
