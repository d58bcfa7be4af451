#pragma once

#include "vxtl/handle.h"

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>

namespace devhost::host {

/// The exit code of a process (native handle, borrowed) that ends within the time; nothing when it has not.
std::optional<unsigned long> waitForExit(void* process, std::chrono::milliseconds timeout);

struct StartedProcess {
    vx::SharedHandle handle;
    unsigned long id;
};

/// Starts the program with a command line that is given as it stands. Throws CommandError (Failed).
StartedProcess startProcess(
    const std::filesystem::path& program, std::wstring commandLine, const std::filesystem::path& folder);

/// Runs tarnag.exe of a folder to its end and gives its exit code. Throws CommandError: Failed when it cannot be
/// started, TimedOut when it has not ended in time; then it is left running.
unsigned long runAgent(
    const std::filesystem::path& folder, const std::wstring& arguments, std::chrono::milliseconds timeout);

/// What runs on its own at a boot: when a deployment waits for one, lets the agent finish it and gives the agent's
/// exit code. Throws CommandError as runAgent does, and when nobody knows the agent's folder.
std::optional<unsigned long> runBootWork();

} // namespace devhost::host
