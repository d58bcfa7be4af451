#pragma once

#include "vxtl/handle.h"

#include <optional>
#include <string>
#include <vector>

namespace vx::users {

/// A terminal session as the system lists it.
struct Session {
    unsigned long id = 0;
    std::wstring stationName;
    int state = 0; ///< the system's numbers: 0 active
};

/// The system's terminal sessions.
class SessionDriver {
public:
    virtual ~SessionDriver() = default;
    /// 0xFFFFFFFF while none is attached to the console.
    virtual unsigned long activeConsoleSession() = 0;
    /// False on failure: GetLastError tells why.
    virtual bool enumerate(std::vector<Session>& sessions) = 0;
    /// Empty where the system doesn't answer; an empty text where nobody is logged on.
    virtual std::optional<std::wstring> userName(unsigned long session) = 0;
    virtual std::optional<unsigned short> clientProtocol(unsigned long session) = 0;
    /// The token of the session's user. Null on failure: GetLastError tells why.
    virtual SharedHandle userToken(unsigned long session) = 0;
};

/// The real one; any thread.
SessionDriver& systemSessionDriver();

} // namespace vx::users
