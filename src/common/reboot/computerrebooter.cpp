#include "common/reboot/computerrebooter.h"

#include "logging/logstream.h"

#include <utility>

namespace vx::tarn::common {

using logging::Level;
using logging::LogStream;

ComputerRebooter::ComputerRebooter(std::unique_ptr<IRebootDriver> driver) : m_driver(std::move(driver)) {}

bool ComputerRebooter::initiateReboot()
{
    VX_LOG_SCOPE();
    if (!acquireShutdownPrivileges()) {
        LogStream(Level::Error) << "Failed to acquire shutdown privileges";
        return false;
    }
    if (const auto error = m_driver->reboot()) {
        LogStream(Level::Error) << "Error initiating shutdown. Last error code: " << *error;
        return false;
    }
    LogStream(Level::Info) << "ExitWindowsEx for reboot successfully completed.";
    return true;
}

bool ComputerRebooter::acquireShutdownPrivileges()
{
    const auto failure = m_driver->enableShutdownPrivilege();
    if (!failure)
        return true;
    if (failure->step == PrivilegeFailure::Step::OpenToken)
        LogStream(Level::Error) << "Failed to open process token, error " << failure->error;
    else
        LogStream(Level::Error) << "Failed to adjust token privileges, error " << failure->error;
    return false;
}

} // namespace vx::tarn::common
