#pragma once

#include "vxtl-process/users/sessiondriver.h"
#include "vxtl/handle.h"

#include <vector>

namespace vx::users {

/// The sessions in which a user may be at work: the console session first, whether someone is logged on
/// there or not, then all active sessions that have a user. A failure is logged and shortens the list.
std::vector<unsigned long> getUserSessions(SessionDriver& driver = systemSessionDriver());

/// The token of the user who is logged on to the session. Only a service may ask. Throws Win32Exception.
SharedHandle getInteractivelyLoggedUserTokenForConsoleId(
    unsigned long session, SessionDriver& driver = systemSessionDriver());

} // namespace vx::users
