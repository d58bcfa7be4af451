#include "vxtl/service.h"
#include "support/thrown.h"
#include "vxtl/win32exception.h"

#include <windows.h>

using namespace vx;

namespace {

void expectFailure(unsigned long code, const std::wstring& reason, auto operation)
{
    const auto failure = support::thrown<Win32Exception>(operation);
    EXPECT_EQ(failure.code(), code);
    EXPECT_EQ(failure.reason(), reason);
}

} // namespace

TEST(Service, changesTheStartTypeAndNothingElse)
{
    expectFailure(ERROR_SERVICE_DOES_NOT_EXIST, L"Can't open service 'no such service' with access rights 4",
        [] { Service(L"no such service").getState(); });
    Service service(L"wuauserv");
    const ServiceStartType before = service.getStartType();
    service.changeStartType(ServiceStartType::Disabled);
    EXPECT_EQ(service.getStartType(), ServiceStartType::Disabled);
    EXPECT_EQ(service.getState(), ServiceState::Stopped);
    expectFailure(ERROR_SERVICE_DISABLED, L"Can't start service 'wuauserv'", [&] { service.beginStart(); });
    service.changeStartType(before);
    EXPECT_EQ(service.getStartType(), before);
    expectFailure(
        ERROR_SERVICE_NOT_ACTIVE, L"Can't send stop control to service 'wuauserv'", [&] { service.beginStop(); });
}
