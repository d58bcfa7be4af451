#include "vxtl-process/users/usersessions.h"

#include "users/samename.h"
#include "vxtl/win32exception.h"

#include <windows.h>

#include <wtsapi32.h>

namespace vx::users {

namespace {

using logging::Level;
using logging::LogStream;

constexpr unsigned long noSession = 0xFFFFFFFF;

const char* protocolText(unsigned short protocol)
{
    switch (protocol) {
    case 0: return "CONSOLE";
    case 1: return "ICA";
    case 2: return "RDP";
    default: return "UNKNOWN";
    }
}

/// Whether a user is logged on to the session and active there.
bool hasUser(const Session& session, SessionDriver& driver)
{
    if (isSameName(session.stationName, L"Services") || session.state != WTSActive)
        return false;
    const auto name = driver.userName(session.id);
    const auto protocol = driver.clientProtocol(session.id);
    if (!name || name->empty() || !protocol)
        return false;
    LogStream(Level::Info) << "WTS Found logged in user (" << session.id << ", " << *name << ", "
                           << protocolText(*protocol) << ")";
    return true;
}

} // namespace

std::vector<unsigned long> getUserSessions(SessionDriver& driver)
{
    VX_LOG_SCOPE();
    std::vector<unsigned long> result;
    const unsigned long console = driver.activeConsoleSession();
    if (console != noSession)
        result.push_back(console);
    std::vector<Session> sessions;
    if (!driver.enumerate(sessions)) {
        const DWORD error = GetLastError();
        LogStream(Level::Error) << "WTS WTSEnumerateSessions failed. LastError: " << error;
        return result;
    }
    for (const Session& session : sessions)
        if (hasUser(session, driver) && session.id != console)
            result.push_back(session.id);
    return result;
}

SharedHandle getInteractivelyLoggedUserTokenForConsoleId(unsigned long session, SessionDriver& driver)
{
    VX_LOG_SCOPE();
    SharedHandle token = driver.userToken(session);
    if (!token) {
        const DWORD error = GetLastError();
        VX_THROW_WIN32(error);
    }
    return token;
}

} // namespace vx::users
