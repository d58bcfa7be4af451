#include "common/serviceproxy/serviceproxy.h"
#include "common/event/event.h"
#include "support/thrown.h"
#include "vxtl/win32exception.h"

#include <windows.h>

using namespace std::chrono_literals;
using namespace vx;
using namespace vx::tarn::common;

namespace {

/// While the system still starts its own services, it may refuse another one after a wait of some seconds.
bool startWhenTheSystemIsReady(ServiceProxy& proxy)
{
    const auto deadline = std::chrono::steady_clock::now() + 60s;
    while (std::chrono::steady_clock::now() < deadline)
        try {
            return proxy.beginStart(30s, ServiceWait::Yes).wait();
        } catch (const Win32Exception& e) {
            if (e.code() != ERROR_SERVICE_REQUEST_TIMEOUT && e.code() != ERROR_SERVICE_DATABASE_LOCKED)
                throw;
        }
    return false;
}

} // namespace

TEST(ServiceProxy, startsAndStopsTheService)
{
    // A service that comes with the system and runs on demand only.
    ServiceProxy proxy(L"BITS", 1ms);
    ASSERT_TRUE(proxy.isStopped());
    const auto codeOf = [](auto operation) { return support::thrown<Win32Exception>(operation).code(); };
    EXPECT_EQ(codeOf([&] { proxy.beginStop(0s, ServiceWait::No); }), ERROR_SERVICE_NOT_ACTIVE);
    proxy.changeStartType(ServiceStartType::Disabled);
    EXPECT_EQ(codeOf([&] { proxy.beginStart(0s, ServiceWait::No); }), ERROR_SERVICE_DISABLED);
    proxy.changeStartType(ServiceStartType::Demand);
    EXPECT_EQ(proxy.getStartType(), ServiceStartType::Demand);
    ASSERT_TRUE(startWhenTheSystemIsReady(proxy));
    EXPECT_TRUE(proxy.isRunning());
    EXPECT_THROW(proxy.beginStart(30s, ServiceWait::Yes), Win32Exception) << "it runs already";
    const auto never = Event::createManualResetEvent({}, false);
    EXPECT_TRUE(proxy.beginStop(30s, ServiceWait::Yes).wait(never.get()));
    EXPECT_EQ(proxy.getState(), ServiceState::Stopped);
    const auto missing = support::thrown<Win32Exception>([] { ServiceProxy(L"no such service").getState(); });
    EXPECT_EQ(missing.code(), ERROR_SERVICE_DOES_NOT_EXIST);
    EXPECT_EQ(missing.reason(), L"Can't open service 'no such service' with access rights 4");
}

TEST(ServiceWaitLoop, endsWithTheStateTheTimeoutOrTheCancel)
{
    int looks = 0;
    const auto stopsAtThirdLook = [&] { return ++looks < 3 ? ServiceState::StopPending : ServiceState::Stopped; };
    EXPECT_TRUE(waitForState(stopsAtThirdLook, ServiceState::Stopped, 30s, 1ms, nullptr));
    EXPECT_EQ(looks, 3);
    const auto neverStops = [] { return ServiceState::Running; };
    const auto cancel = Event::createManualResetEvent({}, false);
    EXPECT_FALSE(waitForState(neverStops, ServiceState::Stopped, 5ms, 1ms, cancel.get()));
    cancel->set();
    // Neither the time-out nor the pause may be what ends this one.
    EXPECT_FALSE(waitForState(neverStops, ServiceState::Stopped, 24h, 24h, cancel.get()));
}

TEST(ServiceOperation, waitsOnceOnlyAndLeavesNothingBehindWhenMoved)
{
    ServiceOperation source([](const IWaitable*) { return true; });
    ServiceOperation target(std::move(source));
    EXPECT_THROW(source.wait(), std::logic_error);
    EXPECT_TRUE(target.wait());
    EXPECT_THROW(target.wait(), std::logic_error);
}
