#include "common/factory/commonfactory.h"
#include "common/winhttpproxy/winhttpdefaultproxychanger.h"
#include "common/winhttpproxy/winhttpproxychangerimpl.h"
#include "machine/system.h"
#include "support/logcapture.h"

#include <stdexcept>

using namespace vx::tarn::common;

TEST(MachineProxy, isAnotherOneForTheLengthOfAJobHoweverThatEnds)
{
    if (devhost::machine::thisSystem() == devhost::machine::System::Windows)
        GTEST_SKIP() << "this is a real Windows, whose proxy is somebody's";
    const support::LogCapture log;
    const auto machine = std::make_shared<WinHTTPProxyChangerImpl>();
    for (const ProxyConfiguration& before : {ProxyConfiguration{L"before:1", L"<local>"}, ProxyConfiguration()}) {
        const WinHTTPDefaultProxyChanger known(before, machine);
        ProxyConfiguration present;
        try {
            const auto changer = CommonFactory().createProxyChanger(L"user:1#secret@during:2", L"a;b");
            EXPECT_TRUE(machine->getProxy(present));
            EXPECT_EQ(present, (ProxyConfiguration{L"user:1#secret@during:2", L"a;b"}));
            throw std::runtime_error("left");
        } catch (const std::runtime_error&) {
            EXPECT_TRUE(machine->getProxy(present));
            EXPECT_EQ(present, before);
        }
    }
    EXPECT_TRUE(log.has(5, "proxy: user:<password>@during:2, bypass: a;b")) << log.text();
    EXPECT_TRUE(log.has(4, "Proxy user:<password>@during:2 with bypass a;b has been set")) << log.text();
    EXPECT_EQ(log.count("secret"), 0u) << log.text();
}
