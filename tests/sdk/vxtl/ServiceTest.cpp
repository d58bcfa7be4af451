#include "vxtl/service.h"
#include "vxtl/dll.h"
#include "vxtl/win32exception.h"
#include "vxtl/wow64.h"

#include <gtest/gtest.h>
#include <windows.h>

namespace vx {
namespace {

template <typename Operation>
void expectFailure(unsigned long code, const std::wstring& reason, Operation operation)
{
    try {
        operation();
        ADD_FAILURE();
    } catch (const Win32Exception& e) {
        EXPECT_EQ(e.code(), code);
        EXPECT_EQ(e.reason(), reason);
    }
}

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
}

TEST(Service, refusesToStopWhatIsStopped)
{
    expectFailure(ERROR_SERVICE_NOT_ACTIVE, L"Can't send stop control to service 'wuauserv'",
        [] { Service(L"wuauserv").beginStop(); });
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
    // This name exists for redirected programs only.
    const auto exists = [] { return GetFileAttributesW(L"C:\\windows\\sysnative") != INVALID_FILE_ATTRIBUTES; };
    EXPECT_TRUE(exists());
    {
        const wow64::DisabledFsRedirection off;
        EXPECT_FALSE(exists());
    }
    EXPECT_TRUE(exists());
}

} // namespace
} // namespace vx
