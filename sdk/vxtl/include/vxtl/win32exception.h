#pragma once

#include "vxtl/errorcodeexception.h"

namespace vx {

/// Failed system calls; codes are those of GetLastError and of the registry's status results.
struct Win32ErrorCategory {
    static constexpr const wchar_t* label = L"Win32Exception";
    /// The system's text of the code with its line end; empty when there is none. Never throws.
    static std::wstring emptyReason(unsigned long code) noexcept;
};

/// unsigned long is the system's DWORD.
using Win32Exception = ErrorCodeException<Win32ErrorCategory, unsigned long>;

} // namespace vx

/// Throws a Win32Exception: VX_THROW_WIN32(code) or VX_THROW_WIN32(code, L"reason"). The code is taken before
/// anything else is evaluated, so it may be GetLastError() right after the failed call. Without a reason the
/// system's text of the code stands in.
#define VX_THROW_WIN32(code, ...)                                                                                      \
    do {                                                                                                               \
        const unsigned long vxFailureCode = (code);                                                                    \
        VX_THROW(::vx::Win32Exception, vxFailureCode, std::wstring(__VA_ARGS__));                                      \
    } while (false)

/// The same with the given function name.
#define VX_THROW_WIN32_AS(functionName, code, ...)                                                                     \
    do {                                                                                                               \
        const unsigned long vxFailureCode = (code);                                                                    \
        VX_THROW_AS(::vx::Win32Exception, functionName, vxFailureCode, std::wstring(__VA_ARGS__));                     \
    } while (false)

/// Throws a Win32Exception unless the status, for one of a registry call, is 0.
#define VX_CHECK_WIN32(status)                                                                                         \
    do {                                                                                                               \
        const auto vxStatus = static_cast<unsigned long>(status);                                                      \
        if (vxStatus != 0)                                                                                             \
            VX_THROW_WIN32(vxStatus);                                                                                  \
    } while (false)
