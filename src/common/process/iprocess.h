#pragma once

#include "vxtl/handle.h"

#include <cstdint>
#include <string>

namespace vx::process {
struct Credentials;
enum class Redirect : unsigned;
} // namespace vx::process

namespace vx::tarn::common {

/// Starts a child process and waits for it. One thread. A failed start is a log line and false.
class IProcess {
public:
    virtual ~IProcess() = default;
    /// `flags` are the system's creation flags, `userToken` a borrowed token handle or null.
    virtual bool start(
        const std::wstring& commandLine, unsigned long flags, process::Redirect redirect, void* userToken) = 0;
    virtual bool start(
        const std::wstring& executable, const std::wstring& arguments, const process::Credentials& credentials) = 0;
    /// Blocks until the child has ended. Throws Win32Exception.
    virtual void wait() = 0;
    /// The exit code. Throws Win32Exception.
    virtual std::uint32_t getReturnCode() = 0;
    /// The child's process handle; shared, so it may be waited on after this object starts another one.
    virtual const SharedHandle& getHandle() = 0;
};

} // namespace vx::tarn::common
