#include "common/reboot/rebootdriver.h"
#include "vxtl/handle.h"

#include <gtest/gtest.h>
#include <windows.h>

// The reboot itself has no test here: it would end this program as if all had gone well.
TEST(RebootDriver, enablesThePrivilegeThatARebootTakes)
{
    HANDLE handle = nullptr;
    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY | TOKEN_ADJUST_PRIVILEGES, &handle));
    const vx::KernelHandle token(handle);
    PRIVILEGE_SET wanted = {1, PRIVILEGE_SET_ALL_NECESSARY, {}};
    ASSERT_TRUE(LookupPrivilegeValueW(nullptr, SE_SHUTDOWN_NAME, &wanted.Privilege[0].Luid));
    const auto isEnabled = [&] {
        BOOL enabled = FALSE;
        EXPECT_TRUE(PrivilegeCheck(token.get(), &wanted, &enabled));
        return enabled != FALSE;
    };
    TOKEN_PRIVILEGES off = {1, {{wanted.Privilege[0].Luid, 0}}};
    ASSERT_TRUE(AdjustTokenPrivileges(token.get(), FALSE, &off, 0, nullptr, nullptr));
    ASSERT_FALSE(isEnabled());
    EXPECT_FALSE(vx::tarn::common::RebootDriver().enableShutdownPrivilege());
    EXPECT_TRUE(isEnabled());
}
