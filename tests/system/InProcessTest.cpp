#include "rig.h"

#include "clockahead.h"
#include "host/pluginsession.h"
#include "keys/keycatalogue.h"
#include "support/footprint.h"

namespace rig {
namespace {

namespace host = devhost::host;

/// The test itself is the host: what it does to its process meets the plug-in.
class InProcessTest : public SystemTest {
protected:
    void SetUp() override
    {
        startStoreAlone();
        client.set(host::keyOf(host::keys::host.lastSuccessfulUpdateTimestamp), Value::fromInt64(1));
        client.set(enabled, Value::fromBool(true));
    }
    /// One life: loaded, run until the agent has ended and `meanwhile` has returned, stopped, unloaded.
    void run(const std::function<void()>& meanwhile = [] {})
    {
        const std::size_t lives = logCount("Run processing") + 1;
        const std::size_t ends = logCount(agentEnd) + 1;
        const auto library = support::programFolder() / "tarnhd.dll";
        {
            host::PluginSession session(
                library, "tarnhd", 36, {[](const std::string&, std::uint32_t) {}, [](std::uint32_t) {}});
            session.start();
            waitForLog("Run processing", lives);
            waitForAgentEnds(ends);
            meanwhile();
            session.stop();
            ASSERT_TRUE(session.waitForEnd(std::chrono::seconds(60)));
        }
        EXPECT_FALSE(host::PluginLoader::isLoaded(library));
    }
};

TEST_F(InProcessTest, leavesNeitherHandlesNorThreadSlotsBehind)
{
    constexpr int lives = 10;
    for (int i = 0; i < 2; ++i)
        run();
    const support::Footprint before = support::footprint();
    for (int i = 0; i < lives; ++i)
        run();
    const support::Footprint left = support::footprint() - before;
    EXPECT_LT(left.handles, lives / 2);
    EXPECT_EQ(left.threadSlots, 0);
}

TEST_F(InProcessTest, worksBehindTheEndOfATimeOf32Bits)
{
    constexpr std::int64_t end = 0x7FFFFFFF;
    for (const std::int64_t year : {2040, 2100, 2110}) {
        SCOPED_TRACE(year);
        const ClockAhead clock((year - 1970) * 31'556'952);
        // The first scan comes out of the scheduler.
        run([&] { scan(year); });
        EXPECT_GT(number(lastScan), end);
    }
}

} // namespace
} // namespace rig
