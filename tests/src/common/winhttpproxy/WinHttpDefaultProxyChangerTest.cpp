#include "common/winhttpproxy/winhttpdefaultproxychanger.h"
#include "support/logcapture.h"
#include "support/thrown.h"
#include "vxtl/exception.h"

#include <stdexcept>

using namespace vx::tarn::common;

namespace {

struct FakeMachine : IWinHttpProxyChanger {
    bool setProxy(const ProxyConfiguration& configuration) override
    {
        if (throws)
            throw std::runtime_error("no library");
        if (isWritable)
            present = configuration;
        return isWritable;
    }
    bool getProxy(ProxyConfiguration& configuration) override
    {
        configuration = present;
        return isReadable;
    }

    ProxyConfiguration present{L"old:1", L"<local>"};
    bool isReadable = true, isWritable = true, throws = false;
};

const ProxyConfiguration before = FakeMachine().present;
const ProxyConfiguration during{L"new:2", L""};

} // namespace

TEST(WinHTTPDefaultProxyChanger, bringsTheOldProxyBackHoweverItsScopeIsLeft)
{
    const auto machine = std::make_shared<FakeMachine>();
    const auto leave = [&] {
        const WinHTTPDefaultProxyChanger changer(during, machine);
        EXPECT_EQ(machine->present, during);
        throw std::runtime_error("left");
    };
    EXPECT_THROW(leave(), std::runtime_error);
    EXPECT_EQ(machine->present, before);
}

TEST(WinHTTPDefaultProxyChanger, changesNothingWhenItFails)
{
    const auto machine = std::make_shared<FakeMachine>();
    const auto reason = [&] {
        return support::thrown<vx::BaseException>([&] { WinHTTPDefaultProxyChanger(during, machine); }).reason();
    };
    machine->isWritable = false;
    EXPECT_EQ(reason(), L"Failed to set proxy configuration.");
    *machine = FakeMachine();
    machine->isReadable = false;
    EXPECT_EQ(reason(), L"Failed to get proxy configuration.");
    EXPECT_EQ(machine->present, before);
}

TEST(WinHTTPDefaultProxyChanger, onlyLogsThatTheOldProxyDoesNotComeBack)
{
    for (const bool throws : {false, true}) {
        const support::LogCapture log;
        const auto machine = std::make_shared<FakeMachine>();
        {
            const WinHTTPDefaultProxyChanger changer(during, machine);
            machine->isWritable = false;
            machine->throws = throws;
        }
        EXPECT_TRUE(log.has(2, "Failed to restore proxy configuration.")) << log.text();
    }
}
