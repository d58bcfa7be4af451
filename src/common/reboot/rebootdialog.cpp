#include "common/reboot/rebootdialog.h"

#include "common/process/iprocess.h"
#include "common/reboot/flyeraudience.h"
#include "common/usersessions/iusersessions.h"
#include "vxtl-process/users/useraccountproperties.h"
#include "vxtl/guarded.h"
#include "vxtl/win32exception.h"

#include <windows.h>

#include <lmerr.h>

#include <utility>

namespace vx::tarn::common {

using logging::Level;
using logging::LogStream;

RebootDialog::RebootDialog(
    std::shared_ptr<settings::Settings> settings, ProcessMaker createProcess, std::shared_ptr<IUserSessions> sessions)
    : m_tarnpatchSettings(std::move(settings)), m_createProcess(std::move(createProcess)),
      m_userSessions(std::move(sessions))
{}

RebootDialog::~RebootDialog() = default;

bool RebootDialog::showRebootDialog()
{
    VX_LOG_SCOPE();
    return guarded("Failed to trigger reboot through LUMO: ", [this] {
        for (const unsigned long session : m_userSessions->getUserSessions())
            showInSession(session);
    });
}

void RebootDialog::showInSession(unsigned long session)
{
    const SharedHandle token = tokenOf(session);
    if (!token || !isTold(token))
        return;
    if (rebootForSession(token))
        LogStream(Level::Info) << "Set reboot variable has been successfully performed at session " << session;
    else
        LogStream(Level::Warning) << "Failed to perform reboot for session: " << session;
}

// The console session is among them whether someone is logged on there or not, and must not keep the others from
// being told.
SharedHandle RebootDialog::tokenOf(unsigned long session)
{
    unsigned long error = 0;
    try {
        SharedHandle token = m_userSessions->getToken(session);
        error = GetLastError();
        if (token && token->isValid())
            return token;
    } catch (const Win32Exception& e) {
        error = e.code();
    }
    LogStream(Level::Warning) << "Failed to get token for the session " << session
                              << ". Token is null. GetLastError() = " << error;
    return nullptr;
}

bool RebootDialog::isTold(const SharedHandle& token)
{
    return guarded("Failed to check if reboot flyer should be displayed: ", [&] {
        return isSessionTold(m_tarnpatchSettings.installation.reboot.showFlyerPolicy(), [&] { return isAdmin(token); });
    });
}

bool RebootDialog::isAdmin(const SharedHandle& token)
{
    LogStream(Level::Debug) << "Checking if is current user is admin";
    const users::UserAccount account = m_userSessions->getUserAccountByToken(token);
    try {
        return m_userSessions->createUserAccountProperties(account)->isAdmin();
    } catch (const Win32Exception& e) {
        if (e.code() != NERR_DCNotFound)
            throw;
    }
    LogStream(Level::Debug) << "Domain controller not found, trying using local host";
    const users::UserAccount local = m_userSessions->createUserAccount(std::wstring(), account.user());
    return m_userSessions->createUserAccountProperties(local)->isAdmin();
}

} // namespace vx::tarn::common
