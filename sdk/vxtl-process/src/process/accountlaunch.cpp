#include "process/accountlaunch.h"

#include "priveleges/iprivelegesholder.h"
#include "process/accountcheck.h"
#include "process/impersonationguard.h"
#include "vxtl-process/users/useraccount.h"
#include "vxtl/guarded.h"

#include <windows.h>

namespace vx::process {

namespace {

using logging::Level;
using logging::LogStream;

/// The child runs as another user, perhaps in another session: its console must not pop up there.
void hideOrShow(LaunchRequest& request)
{
    if (request.flags & CREATE_NO_WINDOW) {
        request.flags &= ~static_cast<unsigned long>(CREATE_NO_WINDOW);
        request.showWindow = SW_FORCEMINIMIZE;
    } else {
        request.desktop = L"winsta0\\default";
    }
    request.flags |= CREATE_NEW_CONSOLE;
}

/// Impersonation lasts from before the duplication until the process exists.
LaunchedProcess createImpersonated(void* token, const LaunchRequest& request, LaunchDriver& driver)
{
    const ImpersonationGuard guard(token);
    const SharedHandle primary = driver.duplicatePrimary(token);
    return driver.createAsUser(primary->get(), request);
}

bool mayAssignPrimaryToken(const std::wstring& qualifiedName, LaunchDriver& driver)
{
    return guarded(
        [&] { return driver.privelegesHolder(qualifiedName)->hasPrivilege(L"SeAssignPrimaryTokenPrivilege"); });
}

} // namespace

LaunchedProcess launchWithToken(LaunchRequest request, void* token, LaunchDriver& driver)
{
    const users::UserAccount account(token);
    LogStream(Level::Info) << "Launching process '" << request.commandLine << "' with credentials: '"
                           << account.qualifiedName() << "'";
    hideOrShow(request);
    checkAccount(account, driver);
    const std::shared_ptr<void> environment = driver.createEnvironment(token);
    request.environment = environment.get();
    return createImpersonated(token, request, driver);
}

LaunchedProcess launchWithCredentials(LaunchRequest request, const Credentials& credentials, LaunchDriver& driver)
{
    const users::UserAccount account(credentials.domain, credentials.user);
    LogStream(Level::Info) << "Launching process '" << request.commandLine << "' with credentials: '"
                           << account.qualifiedName() << ":"
                           << (credentials.password.empty() ? "<no password>" : "<password>") << "'";
    request.showWindow = SW_FORCEMINIMIZE;
    request.flags = CREATE_DEFAULT_ERROR_MODE | CREATE_NEW_CONSOLE;
    checkAccount(account, driver);
    const bool mayAssign = mayAssignPrimaryToken(account.qualifiedName(), driver);
    const SharedHandle token = driver.logon(credentials);
    if (mayAssign && driver.hasEffectiveAdminRights(token->get())) {
        LogStream(Level::Info) << "Using elevated run scheme";
        return createImpersonated(token->get(), request, driver);
    }
    LogStream(Level::Info) << "Using non-elevated run scheme";
    return driver.createWithLogon(credentials, request);
}

} // namespace vx::process
