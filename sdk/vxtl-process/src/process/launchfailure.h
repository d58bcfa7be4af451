#pragma once

#include "vxtl/win32exception.h"

/// Throws the thread's last error in the name of the operation that all launches go through.
#define VX_THROW_LAUNCH(failure)                                                                                       \
    do {                                                                                                               \
        const unsigned long vxError = GetLastError();                                                                  \
        VX_THROW_AS(::vx::Win32Exception, L"vx::process::Process::createProcess", vxError, failure);                   \
    } while (false)
