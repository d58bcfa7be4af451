// Native twin of the last error's keeper: errno stands for the last error.

#include "logging/details/lasterror.h"

#include <cerrno>

namespace vx::logging::details {

LastErrorKeeper::LastErrorKeeper() noexcept : m_lastError(static_cast<unsigned long>(errno)) {}

LastErrorKeeper::~LastErrorKeeper()
{
    errno = static_cast<int>(m_lastError);
}

} // namespace vx::logging::details
