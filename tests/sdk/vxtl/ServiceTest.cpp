#include "vxtl/service.h"
#include "support/thrown.h"
#include "vxtl/dll.h"
#include "vxtl/win32exception.h"
#include "vxtl/wow64.h"

#include <windows.h>

#include <fstream>

using namespace vx;

namespace {

template <typename Operation>
void expectFailure(unsigned long code, const std::wstring& reason, Operation operation)
{
    const auto failure = support::thrown<Win32Exception>(operation);
    EXPECT_EQ(failure.code(), code);
    EXPECT_EQ(failure.reason(), reason);
}

} // namespace

TEST(Service, namesTheServiceThatIsMissing)
{
    Service service(L"no such service");
    expectFailure(ERROR_SERVICE_DOES_NOT_EXIST, L"Can't open service 'no such service' with access rights 4",
        [&] { service.getState(); });
    expectFailure(ERROR_SERVICE_DOES_NOT_EXIST, L"Can't open service 'no such service' with access rights 32",
        [&] { service.beginStop(); });
}

TEST(Service, changesTheStartTypeAndNothingElse)
{
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

TEST(Dll, findsExportsAndNamesMissingOnes)
{
    void* kernel = dll::getModuleHandle(L"kernel32");
    ASSERT_TRUE(kernel);
    DWORD WINAPI (*processId)() = dll::details::ProcAddress(kernel, "GetCurrentProcessId");
    EXPECT_EQ(processId(), GetCurrentProcessId());
    expectFailure(ERROR_PROC_NOT_FOUND, L"Failure to get address of function NoSuchFunction",
        [&] { dll::details::ProcAddress(kernel, "NoSuchFunction"); });
    EXPECT_FALSE(dll::getModuleHandle(L"no such module"));
}

TEST(Wow64, showsTheRealSystemFolderWhileRedirectionIsOff)
{
    if (!wow64::isWow64())
        GTEST_SKIP() << "this system redirects nothing";
    const auto machine = [] {
        std::ifstream library("C:\\windows\\system32\\kernel32.dll", std::ios::binary);
        char head[1024] = {};
        library.read(head, sizeof(head));
        const auto* header = reinterpret_cast<const IMAGE_DOS_HEADER*>(head);
        return reinterpret_cast<const IMAGE_NT_HEADERS*>(head + header->e_lfanew)->FileHeader.Machine;
    };
    EXPECT_EQ(machine(), IMAGE_FILE_MACHINE_I386);
    {
        const wow64::DisabledFsRedirection off;
        EXPECT_EQ(machine(), IMAGE_FILE_MACHINE_AMD64);
    }
    EXPECT_EQ(machine(), IMAGE_FILE_MACHINE_I386);
}
