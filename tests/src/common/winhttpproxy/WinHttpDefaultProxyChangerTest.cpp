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
        if (!isReadOnly)
            present = configuration;
        return !isReadOnly;
    }
    bool getProxy(ProxyConfiguration& configuration) override
    {
        configuration = present;
        return isReadable;
    }

    ProxyConfiguration present{L"old:1", L"<local>"};
    bool isReadable = true, isReadOnly = false, throws = false;
};

} // namespace

TEST(WinHTTPDefaultProxyChanger, changesNothingWhenItFails)
{
    const auto machine = std::make_shared<FakeMachine>();
    const auto reason = [&] {
        return support::thrown<vx::BaseException>([&] {
            WinHTTPDefaultProxyChanger({L"new:2", L""}, machine);
        }).reason();
    };
    machine->isReadOnly = true;
    EXPECT_EQ(reason(), L"Failed to set proxy configuration.");
    *machine = FakeMachine();
    machine->isReadable = false;
    EXPECT_EQ(reason(), L"Failed to get proxy configuration.");
    EXPECT_EQ(machine->present, FakeMachine().present);
}

TEST(WinHTTPDefaultProxyChanger, onlyLogsThatTheOldProxyDoesNotComeBack)
{
    const support::LogCapture log;
    const auto machine = std::make_shared<FakeMachine>();
    for (bool FakeMachine::*how : {&FakeMachine::isReadOnly, &FakeMachine::throws}) {
        *machine = FakeMachine();
        const WinHTTPDefaultProxyChanger changer({L"new:2", L""}, machine);
        (*machine).*how = true;
    }
    EXPECT_EQ(log.count("Failed to restore proxy configuration."), 2u) << log.text();
}
