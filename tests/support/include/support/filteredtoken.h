#pragma once

#include <gtest/gtest.h>
#include <windows.h>

namespace support {

/// The process's token as its user has it who is no administrator: the group only denies. The caller closes it.
inline HANDLE tokenWithoutAdministrators()
{
    unsigned char sid[SECURITY_MAX_SID_SIZE];
    DWORD size = sizeof sid;
    EXPECT_TRUE(CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, sid, &size));
    SID_AND_ATTRIBUTES administrators{sid, 0};
    HANDLE own = nullptr;
    EXPECT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_ALL_ACCESS, &own));
    HANDLE filtered = nullptr;
    EXPECT_TRUE(CreateRestrictedToken(own, 0, 1, &administrators, 0, nullptr, 0, nullptr, &filtered));
    CloseHandle(own);
    return filtered;
}

} // namespace support
