#include "vxtl/service.h"

#include "vxtl/handle.h"
#include "vxtl/win32exception.h"

#include <windows.h>

#include <utility>
#include <vector>

namespace vx {

namespace details {

struct ServiceHandleCloser {
    void operator()(SC_HANDLE handle) const noexcept
    {
        if (!CloseServiceHandle(handle))
            logCloseFailure(handle, GetLastError());
    }
};
struct NoServiceHandle {
    bool operator()(SC_HANDLE handle) const noexcept { return !handle; }
};
using ServiceHandle = AutomaticHandle<SC_HANDLE, ServiceHandleCloser, NoServiceHandle>;

static SC_HANDLE openServiceManager()
{
    SC_HANDLE manager = OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT);
    if (!manager)
        VX_THROW_WIN32(GetLastError(), L"Can't connect to service manager");
    return manager;
}

static SC_HANDLE openService(const std::wstring& name, DWORD rights)
{
    const ServiceHandle manager(openServiceManager());
    SC_HANDLE service = OpenServiceW(manager.get(), name.c_str(), rights);
    if (!service)
        VX_THROW_WIN32(
            GetLastError(), L"Can't open service '" + name + L"' with access rights " + std::to_wstring(rights));
    return service;
}

} // namespace details

using details::openService;
using details::ServiceHandle;

Service::Service(std::wstring name) : m_name(std::move(name)) {}

void Service::changeStartType(ServiceStartType type)
{
    const ServiceHandle service(openService(m_name, SERVICE_CHANGE_CONFIG));
    if (!ChangeServiceConfigW(service.get(), SERVICE_NO_CHANGE, static_cast<DWORD>(type), SERVICE_NO_CHANGE, nullptr,
            nullptr, nullptr, nullptr, nullptr, nullptr, nullptr))
        VX_THROW_WIN32(GetLastError(), L"Can't change the service '" + m_name + L"' start type");
}

ServiceStartType Service::getStartType() const
{
    const ServiceHandle service(openService(m_name, SERVICE_QUERY_CONFIG));
    // The texts behind the record follow it in the same buffer; 8 KiB is the system's limit.
    alignas(QUERY_SERVICE_CONFIGW) unsigned char buffer[8192];
    auto* config = reinterpret_cast<QUERY_SERVICE_CONFIGW*>(buffer);
    DWORD needed = 0;
    if (!QueryServiceConfigW(service.get(), config, sizeof(buffer), &needed))
        VX_THROW_WIN32(GetLastError());
    return static_cast<ServiceStartType>(config->dwStartType);
}

ServiceState Service::getState() const
{
    const ServiceHandle service(openService(m_name, SERVICE_QUERY_STATUS));
    SERVICE_STATUS_PROCESS status;
    static_assert(sizeof(status) == 36);
    DWORD needed = 0;
    if (!QueryServiceStatusEx(
            service.get(), SC_STATUS_PROCESS_INFO, reinterpret_cast<BYTE*>(&status), sizeof(status), &needed))
        VX_THROW_WIN32(GetLastError());
    return static_cast<ServiceState>(status.dwCurrentState);
}

void Service::beginStart()
{
    const ServiceHandle service(openService(m_name, SERVICE_START));
    if (!StartServiceW(service.get(), 0, nullptr))
        VX_THROW_WIN32(GetLastError(), L"Can't start service '" + m_name + L"'");
}

void Service::beginStop()
{
    const ServiceHandle service(openService(m_name, SERVICE_STOP));
    SERVICE_STATUS status;
    if (!ControlService(service.get(), SERVICE_CONTROL_STOP, &status))
        VX_THROW_WIN32(GetLastError(), L"Can't send stop control to service '" + m_name + L"'");
}

} // namespace vx
