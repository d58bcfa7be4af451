#include "vxtl/process/effectiveadminrights.h"
#include "vxtl/win32exception.h"

#include <windows.h>

using vx::process::detail::hasEffectiveAdminRights;

TEST(EffectiveAdminRights, countsADenyOnlyGroupToo)
{
    HANDLE token = nullptr;
    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_ALL_ACCESS, &token));
    if (!hasEffectiveAdminRights(token))
        GTEST_SKIP() << "not run by an administrator";
    unsigned char sid[SECURITY_MAX_SID_SIZE];
    DWORD size = sizeof(sid);
    ASSERT_TRUE(CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, sid, &size));
    SID_AND_ATTRIBUTES disabled{sid, 0};
    HANDLE filtered = nullptr;
    ASSERT_TRUE(CreateRestrictedToken(token, 0, 1, &disabled, 0, nullptr, 0, nullptr, &filtered));
    EXPECT_TRUE(hasEffectiveAdminRights(filtered));
    CloseHandle(filtered);
    CloseHandle(token);
}

TEST(EffectiveAdminRights, throwsForWhatIsNoToken)
{
    try {
        hasEffectiveAdminRights(nullptr);
        FAIL() << "no exception";
    } catch (const vx::Win32Exception& exception) {
        EXPECT_STREQ(exception.reason().c_str(), L"GetTokenInformation failed");
    }
}
