#include "common/reboot/vxrestart.h"

#include "common/process/iprocess.h"
#include "common/reboot/restartarguments.h"
#include "common/usersessions/iusersessions.h"
#include "common/utils/productplaces.h"
#include "vxtl-process/process/credentials.h"
#include "vxtl-process/process/redirect.h"
#include "vxtl/guarded.h"
#include "vxtl/registry.h"

#include <windows.h>

#include <utility>

namespace vx::tarn::common {

using logging::Level;
using logging::LogStream;

namespace {

constexpr std::string_view failure = "Failed to trigger reboot through VX restart: ";

} // namespace

VxRestart::VxRestart(std::shared_ptr<settings::Settings> settings, ProcessMaker createProcess,
    std::shared_ptr<IUserSessions> sessions, std::shared_ptr<registry::Registry> registry, WallClock now)
    : RebootDialog(std::move(settings), std::move(createProcess), std::move(sessions)), m_registry(std::move(registry)),
      m_now(std::move(now))
{}

bool VxRestart::getExecutable(std::wstring& executable, std::wstring& arguments)
{
    VX_LOG_SCOPE();
    return guarded("Failed to get executable params: ", [&] {
        const auto& settings = m_tarnpatchSettings.installation.reboot;
        executable = m_registry->openKey(suiteKey)->getStringValue(restartCommand);
        const std::chrono::seconds forceTime = settings.forcedDelay();
        const std::int64_t forceAt = restartForceTime(m_now(), forceTime);
        arguments = restartArguments(settings.postponeFor(), forceAt);
        LogStream(Level::Debug) << "Force reboot in: " << forceTime.count() << " hours";
        LogStream(Level::Info) << "Reboot command line: " << executable << " with arguments " << arguments;
    });
}

bool VxRestart::requireExecutable(std::wstring& executable, std::wstring& arguments)
{
    if (getExecutable(executable, arguments))
        return true;
    LogStream(Level::Error) << "Failed to get restart executable parameters";
    return false;
}

bool VxRestart::showRebootDialog()
{
    VX_LOG_SCOPE();
    return guarded(failure, [this] {
        std::wstring executable, arguments;
        if (!requireExecutable(executable, arguments))
            return false;
        if (m_createProcess()->start(executable, arguments, process::Credentials{}))
            return true;
        LogStream(Level::Error) << "Failed to start process: " << executable << " " << arguments;
        return false;
    });
}

bool VxRestart::rebootForSession(const SharedHandle& token)
{
    VX_LOG_SCOPE();
    return guarded(failure, [&] {
        std::wstring executable, arguments;
        if (!requireExecutable(executable, arguments))
            return false;
        const std::wstring commandLine = L'"' + executable + L"\" " + arguments;
        constexpr DWORD flags = CREATE_NEW_CONSOLE | NORMAL_PRIORITY_CLASS | CREATE_UNICODE_ENVIRONMENT;
        if (m_createProcess()->start(commandLine, flags, process::Redirect::None, token->get()))
            return true;
        LogStream(Level::Error) << "Failed to start process: " << commandLine;
        return false;
    });
}

} // namespace vx::tarn::common
