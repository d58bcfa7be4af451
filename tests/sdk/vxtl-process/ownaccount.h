#pragma once

#include "vxtl/handle.h"

#include <windows.h>

/// The test's own token.
inline vx::SharedHandle ownToken()
{
    HANDLE token = nullptr;
    EXPECT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_ALL_ACCESS, &token));
    return std::make_shared<vx::KernelHandle>(token);
}
