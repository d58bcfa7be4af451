#include "process/accountcheck.h"

#include "process/launchfailure.h"
#include "vxtl-process/process/launchdriver.h"
#include "vxtl-process/users/useraccount.h"
#include "vxtl-process/users/useraccountproperties.h"
#include "vxtl/guarded.h"

#include <windows.h>

namespace vx::process {

namespace {

void requireUsable(users::UserAccountProperties& properties)
{
    if (properties.isAccountDisabled())
        VX_THROW_LAUNCH(L"Account is disabled");
    if (properties.isLockedOut())
        VX_THROW_LAUNCH(L"Account is locked out");
    if (properties.isPasswordExpired())
        VX_THROW_LAUNCH(L"Account has expired password");
}

} // namespace

void checkAccount(const users::UserAccount& account, LaunchDriver& driver)
{
    guarded([&] { requireUsable(*driver.accountProperties(account)); });
}

} // namespace vx::process
