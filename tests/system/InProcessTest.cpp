#include "rig.h"

#include "host/keycatalogue.h"
#include "host/pluginsession.h"
#include "support/footprint.h"

namespace rig {
namespace {

namespace host = devhost::host;

/// The plug-in in this process, which the host need not be.
class LoadCycleTest : public SystemTest {
protected:
    void SetUp() override
    {
        startStoreAlone();
        client.set(std::string(host::keys::profile), Value::fromInt64(1));
        client.set(enabled, Value::fromBool(true));
    }
    /// One life: loaded, run until the agent has ended, stopped, unloaded.
    void cycle()
    {
        const std::size_t lives = logCount("Run processing") + 1;
        const auto library = support::programFolder() / "tarnhd.dll";
        {
            host::PluginSession session(
                library, "tarnhd", 36, {[](const std::string&, std::uint32_t) {}, [](std::uint32_t) {}});
            session.start();
            waitForLog("Run processing", lives);
            waitForAgentEnds(lives);
            session.stop();
            ASSERT_TRUE(session.waitForEnd(std::chrono::seconds(60)));
        }
        EXPECT_FALSE(host::PluginLoader::isLoaded(library));
    }
};

TEST_F(LoadCycleTest, leavesNeitherHandlesNorThreadSlotsBehind)
{
    constexpr int cycles = 10;
    for (int i = 0; i < 2; ++i)
        cycle();
    const support::Footprint before = support::footprint();
    for (int i = 0; i < cycles; ++i)
        cycle();
    const support::Footprint left = support::footprint() - before;
    EXPECT_LT(left.handles, cycles / 2);
    EXPECT_EQ(left.threadSlots, 0);
}

} // namespace
} // namespace rig
