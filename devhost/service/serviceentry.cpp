#include "service/serviceentry.h"

#include "vxtl/handle.h"
#include "vxtl/win32exception.h"

#include <windows.h>

namespace devhost::service {

namespace {

struct ServiceHandleCloser {
    void operator()(SC_HANDLE handle) const noexcept { CloseServiceHandle(handle); }
};
struct NoServiceHandle {
    bool operator()(SC_HANDLE handle) const noexcept { return !handle; }
};
using ServiceHandle = vx::AutomaticHandle<SC_HANDLE, ServiceHandleCloser, NoServiceHandle>;

SC_HANDLE check(SC_HANDLE handle, const std::wstring& subject)
{
    if (!handle)
        VX_THROW_WIN32(GetLastError(), subject);
    return handle;
}

void check(BOOL result, const std::wstring& subject)
{
    if (!result)
        VX_THROW_WIN32(GetLastError(), subject);
}

SC_HANDLE openManager(DWORD rights)
{
    return check(OpenSCManagerW(nullptr, nullptr, rights), L"the service manager");
}

SC_HANDLE open(const std::wstring& name, DWORD rights)
{
    const ServiceHandle manager(openManager(SC_MANAGER_CONNECT));
    return check(OpenServiceW(manager.get(), name.c_str(), rights), L"service " + name);
}

} // namespace

bool ServiceEntry::exists() const
{
    const ServiceHandle manager(openManager(SC_MANAGER_CONNECT));
    const ServiceHandle service(OpenServiceW(manager.get(), m_name.c_str(), SERVICE_QUERY_STATUS));
    if (!service.isValid() && GetLastError() != ERROR_SERVICE_DOES_NOT_EXIST)
        VX_THROW_WIN32(GetLastError(), L"service " + m_name);
    return service.isValid();
}

std::wstring ServiceEntry::commandLine() const
{
    const ServiceHandle service(open(m_name, SERVICE_QUERY_CONFIG));
    // The texts behind the record follow it in the same buffer; 8 KiB is the system's limit.
    alignas(QUERY_SERVICE_CONFIGW) unsigned char buffer[8192];
    auto* config = reinterpret_cast<QUERY_SERVICE_CONFIGW*>(buffer);
    DWORD needed = 0;
    check(QueryServiceConfigW(service.get(), config, sizeof(buffer), &needed), L"configuration of " + m_name);
    return config->lpBinaryPathName;
}

bool ServiceEntry::acceptsStop() const
{
    const ServiceHandle service(open(m_name, SERVICE_QUERY_STATUS));
    SERVICE_STATUS status{};
    check(QueryServiceStatus(service.get(), &status), L"state of " + m_name);
    return (status.dwControlsAccepted & SERVICE_ACCEPT_STOP) != 0;
}

void ServiceEntry::create(const Configuration& configuration)
{
    const ServiceHandle manager(openManager(SC_MANAGER_CONNECT | SC_MANAGER_CREATE_SERVICE));
    const ServiceHandle service(
        check(CreateServiceW(manager.get(), m_name.c_str(), nullptr, SERVICE_QUERY_STATUS, configuration.type,
                  configuration.startType, SERVICE_ERROR_NORMAL, configuration.commandLine.c_str(), nullptr, nullptr,
                  nullptr, nullptr, nullptr),
            L"new service " + m_name));
}

void ServiceEntry::change(const Configuration& configuration)
{
    const ServiceHandle service(open(m_name, SERVICE_CHANGE_CONFIG));
    check(ChangeServiceConfigW(service.get(), configuration.type, configuration.startType, SERVICE_NO_CHANGE,
              configuration.commandLine.c_str(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
        L"configuration of " + m_name);
}

void ServiceEntry::remove()
{
    const ServiceHandle service(open(m_name, DELETE));
    check(DeleteService(service.get()), L"end of service " + m_name);
}

} // namespace devhost::service
