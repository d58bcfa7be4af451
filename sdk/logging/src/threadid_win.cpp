#include "logging/details/threadid.h"

#include <windows.h>

namespace vx::logging::details {

unsigned long currentThreadId() noexcept
{
    return GetCurrentThreadId();
}

} // namespace vx::logging::details
