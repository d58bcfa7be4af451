#include "common/factory/commonfactory.h"
#include "common/winhttpproxy/winhttpdefaultproxychanger.h"
#include "common/winhttpproxy/winhttpproxychangerimpl.h"
#include "machine/system.h"
#include "support/logcapture.h"

using namespace vx::tarn::common;

namespace {

/// A machine of known state, which on a real Windows would be somebody's.
class MachineProxyTest : public testing::Test {
protected:
    void SetUp() override
    {
        if (devhost::machine::thisSystem() == devhost::machine::System::Windows)
            GTEST_SKIP() << "this is a real Windows, whose proxy is somebody's";
        ASSERT_TRUE(machine.setProxy({L"before:1", L"<local>"})) << log.text();
    }
    void TearDown() override { machine.setProxy({}); }
    ProxyConfiguration present()
    {
        ProxyConfiguration result{L"left", L"as it was"};
        EXPECT_TRUE(machine.getProxy(result)) << log.text();
        return result;
    }

    const support::LogCapture log;
    WinHTTPProxyChangerImpl machine;
};

} // namespace

TEST_F(MachineProxyTest, isAnotherOneForTheLengthOfAJob)
{
    try {
        const auto changer = CommonFactory().createProxyChanger(L"user:secret@during:2", L"a;b");
        EXPECT_EQ(present(), (ProxyConfiguration{L"user:secret@during:2", L"a;b"}));
        throw std::runtime_error("left");
    } catch (const std::runtime_error&) {
        EXPECT_EQ(present(), (ProxyConfiguration{L"before:1", L"<local>"}));
    }
    EXPECT_TRUE(log.has(5, "proxy: user:<password>@during:2, bypass: a;b")) << log.text();
    EXPECT_TRUE(log.has(4, "Proxy user:<password>@during:2 with bypass a;b has been set")) << log.text();
    EXPECT_EQ(log.count("secret"), 0u) << log.text();
}

TEST_F(MachineProxyTest, isAnEmptyTextOnAMachineThatHadNone)
{
    ASSERT_TRUE(machine.setProxy({}));
    {
        const WinHTTPDefaultProxyChanger changer({L"during:2", L""}, std::make_shared<WinHTTPProxyChangerImpl>());
        EXPECT_EQ(present(), (ProxyConfiguration{L"during:2", L""}));
    }
    EXPECT_EQ(present(), ProxyConfiguration());
}
