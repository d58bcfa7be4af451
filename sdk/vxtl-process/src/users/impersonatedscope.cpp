#include "users/impersonatedscope.h"

#include "vxtl/win32exception.h"

#include <windows.h>

namespace vx::users {

ImpersonatedScope::ImpersonatedScope(void* token)
{
    if (!token)
        return;
    if (!ImpersonateLoggedOnUser(token)) {
        const DWORD error = GetLastError();
        VX_THROW_WIN32(error);
    }
    m_impersonated = true;
}

} // namespace vx::users
