#include "common/serviceproxy.h"
#include "support/childtest.h"
#include "vxtl/handle.h"
#include "vxtl/win32exception.h"

#include <gtest/gtest.h>
#include <windows.h>

namespace vx::tarn::common {
namespace {

using namespace std::chrono_literals;

constexpr const wchar_t* serviceName = L"TarnhdServiceProxyTest";

/// A service whose program is this one: it runs until it is told to stop.
class ServiceProxyTest : public testing::Test {
protected:
    ServiceProxyTest()
    {
        removeService();
        wchar_t program[MAX_PATH];
        GetModuleFileNameW(nullptr, program, MAX_PATH);
        const std::wstring command = L'"' + std::wstring(program) + L"\" --child runService";
        SC_HANDLE service = CreateServiceW(m_manager, serviceName, serviceName, SERVICE_ALL_ACCESS,
            SERVICE_WIN32_OWN_PROCESS, SERVICE_DEMAND_START, SERVICE_ERROR_IGNORE, command.c_str(), nullptr, nullptr,
            nullptr, nullptr, nullptr);
        CloseServiceHandle(service);
    }
    ~ServiceProxyTest() override
    {
        removeService();
        CloseServiceHandle(m_manager);
    }

    void removeService()
    {
        SERVICE_STATUS status;
        if (SC_HANDLE service = OpenServiceW(m_manager, serviceName, SERVICE_ALL_ACCESS)) {
            ControlService(service, SERVICE_CONTROL_STOP, &status);
            DeleteService(service);
            CloseServiceHandle(service);
        }
    }

    /// While the system still starts its own services, it may refuse this one after a wait of some seconds.
    bool startWhenTheSystemIsReady()
    {
        const auto deadline = std::chrono::steady_clock::now() + 60s;
        while (std::chrono::steady_clock::now() < deadline)
            try {
                return m_proxy.beginStart(30s, ServiceWait::Yes).wait();
            } catch (const Win32Exception& e) {
                if (e.code() != ERROR_SERVICE_REQUEST_TIMEOUT && e.code() != ERROR_SERVICE_DATABASE_LOCKED)
                    throw;
            }
        return false;
    }

    SC_HANDLE m_manager = OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS);
    ServiceProxy m_proxy{serviceName, 1ms};
};

struct Waitable : IWaitable {
    explicit Waitable(bool fired) : handle(CreateEventW(nullptr, TRUE, fired, nullptr)) {}
    void* getHandle() const override { return handle.get(); }
    KernelHandle handle;
};

SERVICE_STATUS_HANDLE statusHandle;
HANDLE stopRequested;

void report(DWORD state)
{
    SERVICE_STATUS status = {SERVICE_WIN32_OWN_PROCESS, state, SERVICE_ACCEPT_STOP, 0, 0, 0, 0};
    SetServiceStatus(statusHandle, &status);
}

DWORD WINAPI control(DWORD code, DWORD, void*, void*)
{
    if (code == SERVICE_CONTROL_STOP)
        SetEvent(stopRequested);
    return NO_ERROR;
}

void WINAPI serviceMain(DWORD, wchar_t**)
{
    stopRequested = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    statusHandle = RegisterServiceCtrlHandlerExW(serviceName, control, nullptr);
    report(SERVICE_RUNNING);
    WaitForSingleObject(stopRequested, INFINITE);
    report(SERVICE_STOPPED);
}

int runService()
{
    std::wstring name = serviceName;
    const SERVICE_TABLE_ENTRYW table[] = {{name.data(), serviceMain}, {nullptr, nullptr}};
    return StartServiceCtrlDispatcherW(table) ? 0 : 1;
}

TEST_F(ServiceProxyTest, startsAndStopsTheService)
{
    EXPECT_EQ(m_proxy.getName(), serviceName);
    EXPECT_EQ(m_proxy.getStartType(), ServiceStartType::Demand);
    EXPECT_TRUE(m_proxy.isStopped());
    EXPECT_THROW(m_proxy.beginStop(0s, ServiceWait::No), Win32Exception) << "it has not started";
    if (!startWhenTheSystemIsReady())
        GTEST_SKIP() << "the system starts no services";
    EXPECT_TRUE(m_proxy.isRunning());
    EXPECT_FALSE(m_proxy.isStopped() || m_proxy.isStartPending() || m_proxy.isStopPending() || m_proxy.isPausing());
    EXPECT_EQ(m_proxy.getStartState(), ServiceState::Running);
    EXPECT_THROW(m_proxy.beginStart(30s, ServiceWait::Yes), Win32Exception) << "it runs already";
    ServiceOperation stop = m_proxy.beginStop(30s, ServiceWait::Yes);
    const Waitable never(false);
    EXPECT_TRUE(stop.wait(&never));
    EXPECT_EQ(m_proxy.getState(), ServiceState::Stopped);
}

TEST(ServiceWaitLoop, endsWithTheStateTheTimeoutOrTheCancel)
{
    int looks = 0;
    const auto stopsAtThirdLook = [&] { return ++looks < 3 ? ServiceState::StopPending : ServiceState::Stopped; };
    EXPECT_TRUE(waitForState(stopsAtThirdLook, ServiceState::Stopped, 30s, 1ms, nullptr));
    EXPECT_EQ(looks, 3);
    const auto neverStops = [] { return ServiceState::Running; };
    EXPECT_FALSE(waitForState(neverStops, ServiceState::Stopped, 5ms, 1ms, nullptr));
    const Waitable fired(true), never(false);
    EXPECT_FALSE(waitForState(neverStops, ServiceState::Stopped, 5ms, 1ms, &never));
    // Neither the time-out nor the pause may be what ends this one.
    EXPECT_FALSE(waitForState(neverStops, ServiceState::Stopped, 24h, 24h, &fired));
}

} // namespace
} // namespace vx::tarn::common

int main(int argc, char** argv)
{
    return support::mainWithChildren(argc, argv, {{"runService", &vx::tarn::common::runService}});
}
