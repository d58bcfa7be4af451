#include "logging/details/lasterror.h"

#include <windows.h>

namespace vx::logging::details {

LastErrorKeeper::LastErrorKeeper() noexcept : m_lastError(GetLastError()) {}

LastErrorKeeper::~LastErrorKeeper()
{
    SetLastError(m_lastError);
}

} // namespace vx::logging::details
