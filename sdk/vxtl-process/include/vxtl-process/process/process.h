#pragma once

#include "vxtl-process/process/launchdriver.h"
#include "vxtl-process/process/redirect.h"
#include "vxtl/handle.h"
#include "vxtl/sync.h"

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>

namespace vx::process {

/// A child process, started by the constructor. Owns the child's handles and this side of its redirected
/// standard streams; destroying it neither waits for the child nor ends it. One thread.
///
/// The constructors throw Win32Exception with the failed call's reason. Before a launch under an account, a
/// disabled, locked or expired account is only logged.
class Process : public IWaitable {
public:
    /// `flags` are the system's creation flags. With a token (borrowed, may be null) the child runs as its
    /// user in the user's environment, which is UTF-16, so the flags are to hold CREATE_UNICODE_ENVIRONMENT.
    Process(const std::wstring& commandLine, unsigned long flags, Redirect redirect, void* userToken,
        LaunchDriver& driver = systemLaunchDriver());

    /// `executable` may be relative to the current directory; an empty working directory stands for the
    /// executable's own. Credentials without a user start the child as the caller. Throws BaseException for
    /// a missing executable.
    Process(const std::wstring& executable, const std::wstring& arguments, const std::wstring& workingDirectory,
        const Credentials& credentials, LaunchDriver& driver = systemLaunchDriver());

    ~Process() override;
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// The exit code; 259 while the child runs. Throws Win32Exception.
    std::uint32_t getReturnCode() const;

    /// The process handle, to wait on.
    void* getHandle() const override { return m_process->get(); }
    /// The same, shared: it may outlive this object.
    const SharedHandle& processHandle() const noexcept { return m_process; }

    /// The child's standard streams as seen from here; null unless redirected. A vanished child shows as
    /// badbit.
    std::ostream* stdinStream() const noexcept { return m_stdinStream.get(); }
    std::istream* stdoutStream() const noexcept { return m_stdoutStream.get(); }
    std::istream* stderrStream() const noexcept { return m_stderrStream.get(); }

private:
    void createProcess(LaunchRequest request, Redirect redirect, void* userToken, LaunchDriver& driver);
    void createProcess(LaunchRequest request, const Credentials& credentials, LaunchDriver& driver);
    void keep(LaunchedProcess launched);

    SharedHandle m_process;
    SharedHandle m_thread;
    std::unique_ptr<std::ostream> m_stdinStream;
    std::unique_ptr<std::istream> m_stdoutStream;
    std::unique_ptr<std::istream> m_stderrStream;
    SharedHandle m_stdinPipe;
    SharedHandle m_stdoutPipe;
    SharedHandle m_stderrPipe;
};

} // namespace vx::process
