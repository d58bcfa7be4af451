#include "common/winhttpproxy/winhttpdefaultproxychanger.h"
#include "support/logcapture.h"
#include "support/thrown.h"
#include "vxtl/exception.h"

#include <functional>
#include <stdexcept>

using namespace vx::tarn::common;

namespace {

struct FakeMachine : IWinHttpProxyChanger {
    bool setProxy(const ProxyConfiguration&) override { return set(); }
    bool getProxy(ProxyConfiguration&) override { return isReadable; }

    bool isReadable = true;
    std::function<bool()> set = [] { return true; };
};

} // namespace

TEST(WinHTTPDefaultProxyChanger, changesNothingWhenItFails)
{
    const auto machine = std::make_shared<FakeMachine>();
    int changes = 0;
    machine->set = [&] { return ++changes == 0; };
    const auto reason = [&] {
        return support::thrown<vx::BaseException>([&] { WinHTTPDefaultProxyChanger({}, machine); }).reason();
    };
    EXPECT_EQ(reason(), L"Failed to set proxy configuration.");
    machine->isReadable = false;
    EXPECT_EQ(reason(), L"Failed to get proxy configuration.");
    EXPECT_EQ(changes, 1);
}

TEST(WinHTTPDefaultProxyChanger, onlyLogsThatTheOldProxyDoesNotComeBack)
{
    const support::LogCapture log;
    const std::function<bool()> refusals[] = {
        [] { return false; }, []() -> bool { throw std::runtime_error("no library"); }};
    for (const auto& refusal : refusals) {
        const auto machine = std::make_shared<FakeMachine>();
        const WinHTTPDefaultProxyChanger changer({}, machine);
        machine->set = refusal;
    }
    EXPECT_EQ(log.count("Failed to restore proxy configuration."), 2u) << log.text();
}
