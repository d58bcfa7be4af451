#pragma once

#include "vxtl/handle.h"

#include <windows.h>

/// The test's own token, and its user's name.
inline vx::SharedHandle ownToken(unsigned long access = TOKEN_ALL_ACCESS)
{
    HANDLE token = nullptr;
    EXPECT_TRUE(OpenProcessToken(GetCurrentProcess(), access, &token));
    return std::make_shared<vx::KernelHandle>(token);
}

inline std::wstring ownName()
{
    wchar_t name[256];
    DWORD size = 256;
    EXPECT_TRUE(GetUserNameW(name, &size));
    return name;
}
