#pragma once

#include "host/context.h"
#include "host/exitcode.h"

#include <cstdint>
#include <optional>
#include <string>

// The commands that ask a running host or its plug-in for something. All throw CommandError, or
// StoreException when the store is not there or refuses.
namespace devhost::host {

/// Opens a remote scan request; waits for its end when `waitSeconds` is given.
ExitCode requestScan(const Context& context, std::optional<unsigned> waitSeconds);
/// The same for an installation of what `descriptor` names.
ExitCode requestInstallation(
    const Context& context, const std::string& descriptor, std::optional<unsigned> waitSeconds);
/// Waits until the host's process has ended; fails when that reports a failure.
ExitCode stopHost(const Context& context);
ExitCode restartPlugin(const Context& context);
/// Plays a reboot: what it forgets is forgotten, and a deployment that waits for it is finished by the agent.
ExitCode reboot(const Context& context);
ExitCode sendResume(const Context& context);
ExitCode sendSessionEvent(const Context& context, std::uint32_t type, std::uint32_t data);
ExitCode forgetBootAtom(const Context& context);

} // namespace devhost::host
