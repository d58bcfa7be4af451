#pragma once

#include "common/settings/tarnpatchsettings.h"
#include "vxtl/handle.h"

#include <functional>
#include <memory>

namespace vx::tarn::common {

class IProcess;
class IUserSessions;

/// Walks through the sessions and decides in which of them the user is told of a reboot; how that is done is for the
/// derived class. Settings are read at each use. One thread.
class RebootDialog {
public:
    /// Makes the object that starts a program; the factory's.
    using ProcessMaker = std::function<std::shared_ptr<IProcess>()>;

    RebootDialog(std::shared_ptr<settings::Settings> settings, ProcessMaker createProcess,
        std::shared_ptr<IUserSessions> sessions);
    virtual ~RebootDialog();
    RebootDialog(const RebootDialog&) = delete;
    RebootDialog& operator=(const RebootDialog&) = delete;

    /// Tells each session that the policy means. A session that can't be told is logged and changes nothing; false
    /// when the walk itself failed, which is logged too. May block on a domain controller.
    virtual bool showRebootDialog();
    /// Tells the session of the token's user. A failure is logged and false.
    virtual bool rebootForSession(const SharedHandle& token) = 0;

protected:
    const TarnpatchSettings m_tarnpatchSettings;
    const ProcessMaker m_createProcess;

private:
    void showInSession(unsigned long session);
    /// Null, after logging, for a session that has none.
    SharedHandle tokenOf(unsigned long session);
    bool isTold(const SharedHandle& token);
    bool isAdmin(const SharedHandle& token);

    const std::shared_ptr<IUserSessions> m_userSessions;
};

} // namespace vx::tarn::common
