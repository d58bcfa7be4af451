#include "process/impersonationguard.h"

#include "logging/logstream.h"

#include <windows.h>

namespace vx::process {

ImpersonationGuard::~ImpersonationGuard()
{
    if (!m_scope.impersonated() || RevertToSelf())
        return;
    const DWORD error = GetLastError();
    logging::LogStream(logging::Level::Error) << "RevertToSelf failed, error " << error;
}

} // namespace vx::process
