#include "qrl-plugin/hostrecords.h"
#include "qrl-plugin/pluginimpl.h"
#include "support/misaligned.h"

using namespace vx::qrl;
using support::callMisaligned;

namespace {

std::string calls;
pluginAPI record{};

void note(const std::string& call, std::uint32_t type = 0, std::uint32_t data = 0)
{
    support::expectAlignedStack();
    calls += call + std::to_string(type) + std::to_string(data) + " ";
}

/// Calls itself through the record from its run.
struct AlignedPlugin : PluginImpl {
    void run() override
    {
        note("run");
        callMisaligned(record.onPowerEvent, 4, &record, 18u, 3u);
        callMisaligned(record.onSessionChangeEvent, 8, &record, 5u, 1u);
        EXPECT_EQ(callMisaligned(record.pluginStop, 12, &record), 0u);
    }
    void stop() override { note("stop"); }
    void onPowerEvent(std::uint32_t type, std::uint32_t data) override { note("power", type, data); }
    void onSessionChangeEvent(std::uint32_t type, std::uint32_t data) override { note("session", type, data); }
};

} // namespace

TEST(QRLPluginInitialize, worksOverAMisalignedStack)
{
    registerPluginFactory([] { return std::make_shared<AlignedPlugin>(); });
    record.size = 36;
    record.onResumeFromLowPowerMode = reinterpret_cast<PluginResumeFunction>(1);
    EXPECT_EQ(callMisaligned(&QRLPluginInitialize, 4, "name", nullptr, &record), 0u);
    EXPECT_EQ(record.pluginInitialize, &QRLPluginInitialize);
    EXPECT_EQ(record.onResumeFromLowPowerMode, nullptr) << "it would come twice";
    EXPECT_EQ(callMisaligned(record.pluginMain, 12, &record), 0u);
    EXPECT_EQ(calls, "run00 power183 session51 stop00 ");
    EXPECT_EQ(record.pluginContextData, nullptr);
}
