#pragma once

#include "vxtl-process/process/launchdriver.h"

namespace vx::process {

/// Starts a child under a logged-on user's token (borrowed), in that user's environment.
LaunchedProcess launchWithToken(LaunchRequest request, void* token, LaunchDriver& driver);

/// Starts a child under an account. An administrator who may assign primary tokens is logged on here and
/// keeps full rights; for all others the system's logon service starts the child.
LaunchedProcess launchWithCredentials(LaunchRequest request, const Credentials& credentials, LaunchDriver& driver);

} // namespace vx::process
