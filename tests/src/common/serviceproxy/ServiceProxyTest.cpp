#include "common/serviceproxy.h"
#include "vxtl/handle.h"
#include "vxtl/win32exception.h"

#include <gtest/gtest.h>
#include <windows.h>

namespace vx::tarn::common {
namespace {

using namespace std::chrono_literals;

/// A service whose program is this one: it runs until it is told to stop.
class ServiceProxyTest : public testing::Test {
protected:
    static constexpr const wchar_t* name = L"TarnhdServiceProxyTest";

    ServiceProxyTest()
    {
        removeService();
        wchar_t program[MAX_PATH];
        GetModuleFileNameW(nullptr, program, MAX_PATH);
        const std::wstring command = L'"' + std::wstring(program) +
                                     L"\" --gtest_also_run_disabled_tests --gtest_filter=ServiceProgram.DISABLED_runs";
        SC_HANDLE service = CreateServiceW(m_manager, name, name, SERVICE_ALL_ACCESS, SERVICE_WIN32_OWN_PROCESS,
            SERVICE_DEMAND_START, SERVICE_ERROR_IGNORE, command.c_str(), nullptr, nullptr, nullptr, nullptr, nullptr);
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
        if (SC_HANDLE service = OpenServiceW(m_manager, name, SERVICE_ALL_ACCESS)) {
            ControlService(service, SERVICE_CONTROL_STOP, &status);
            DeleteService(service);
            CloseServiceHandle(service);
        }
    }

    SC_HANDLE m_manager = OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS);
    ServiceProxy m_proxy{name, 1ms};
};

struct Never : IWaitable {
    Never() : handle(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}
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
    statusHandle = RegisterServiceCtrlHandlerExW(L"", control, nullptr);
    report(SERVICE_RUNNING);
    WaitForSingleObject(stopRequested, INFINITE);
    report(SERVICE_STOPPED);
}

TEST(ServiceProgram, DISABLED_runs)
{
    wchar_t anyName[] = L"";
    const SERVICE_TABLE_ENTRYW table[] = {{anyName, serviceMain}, {nullptr, nullptr}};
    EXPECT_TRUE(StartServiceCtrlDispatcherW(table));
}

TEST_F(ServiceProxyTest, startsAndStopsTheService)
{
    EXPECT_EQ(m_proxy.getName(), name);
    EXPECT_EQ(m_proxy.getStartType(), ServiceStartType::Demand);
    EXPECT_TRUE(m_proxy.isStopped());
    EXPECT_TRUE(m_proxy.beginStart(30s, ServiceWait::Yes).wait());
    EXPECT_TRUE(m_proxy.isRunning());
    EXPECT_FALSE(m_proxy.isStopped() || m_proxy.isStartPending() || m_proxy.isStopPending() || m_proxy.isPausing());
    EXPECT_EQ(m_proxy.getStartState(), ServiceState::Running);
    const Never never;
    EXPECT_TRUE(m_proxy.beginStop(30s, ServiceWait::Yes).wait(&never));
    EXPECT_EQ(m_proxy.getState(), ServiceState::Stopped);
}

TEST_F(ServiceProxyTest, endsAWaitOnTimeoutAndOnCancel)
{
    EXPECT_TRUE(m_proxy.beginStart(30s, ServiceWait::Yes).wait());
    EXPECT_THROW(m_proxy.beginStart(30s, ServiceWait::Yes), Win32Exception) << "it runs already";
    EXPECT_TRUE(m_proxy.beginStop(30s, ServiceWait::Yes).wait());
    EXPECT_THROW(m_proxy.beginStop(0s, ServiceWait::No), Win32Exception) << "it has stopped";
    ServiceOperation start = m_proxy.beginStart(0s, ServiceWait::No);
    EXPECT_THROW(start.wait(), std::logic_error);
}

} // namespace
} // namespace vx::tarn::common
