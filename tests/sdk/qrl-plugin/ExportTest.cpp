#include "qrl-plugin/hostrecords.h"
#include "qrl-plugin/pluginimpl.h"
#include "support/misaligned.h"

using namespace vx::qrl;
using support::callMisaligned;

namespace {

/// Calls itself through the record from its run.
struct AlignedPlugin : PluginImpl {
    static void count()
    {
        support::expectAlignedStack();
        ++calls;
    }
    void run() override
    {
        count();
        for (const std::uint32_t offset : {4u, 8u, 12u}) {
            callMisaligned(record->onPowerEvent, offset, record, 18u, 0u);
            callMisaligned(record->onSessionChangeEvent, offset, record, 5u, 1u);
            EXPECT_EQ(callMisaligned(record->pluginStop, offset, record), 0u);
        }
    }
    void stop() override { count(); }
    void onPowerEvent(std::uint32_t type, std::uint32_t) override
    {
        EXPECT_EQ(type, 18u);
        count();
    }
    void onSessionChangeEvent(std::uint32_t type, std::uint32_t data) override
    {
        EXPECT_EQ(type, 5u);
        EXPECT_EQ(data, 1u);
        count();
    }

    static inline int calls = 0;
    static inline pluginAPI* record = nullptr;
};

void VX_STDCALL ignoreReport(const char*, std::uint32_t) {}

hosterAPI host{0, ignoreReport};

} // namespace

TEST(QRLPluginInitialize, worksOverAMisalignedStack)
{
    registerPluginFactory([] { return std::make_shared<AlignedPlugin>(); });
    pluginAPI record{};
    record.size = 36;
    AlignedPlugin::record = &record;
    EXPECT_EQ(callMisaligned(&QRLPluginInitialize, 4, "name", &host, &record), 0u);
    EXPECT_EQ(record.pluginInitialize, &QRLPluginInitialize);
    EXPECT_EQ(callMisaligned(record.pluginMain, 12, &record), 0u);
    EXPECT_EQ(AlignedPlugin::calls, 1 + 3 * 3);
    EXPECT_EQ(record.pluginContextData, nullptr);
}

TEST(QRLPluginInitialize, sendsTheOldHostsResumeToThePowerEvent)
{
    pluginAPI record{};
    record.size = 24;
    ASSERT_EQ(QRLPluginInitialize("name", &host, &record), 0u);
    ASSERT_NE(record.onResumeFromLowPowerMode, nullptr);
    callMisaligned(record.onResumeFromLowPowerMode, 8, &record);
    record.pluginMain(&record);
    EXPECT_EQ(record.pluginContextData, nullptr);
}
