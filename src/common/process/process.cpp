#include "common/process/process.h"

#include "vxtl-process/process/process.h"
#include "vxtl/guarded.h"
#include "vxtl/win32exception.h"

#include <windows.h>

namespace vx::tarn::common {

namespace {

constexpr std::string_view startFailure = "Failed to start process. Exception caught: ";

} // namespace

Process::Process() = default;
Process::~Process() = default;

bool Process::start(const std::wstring& commandLine, unsigned long flags, process::Redirect redirect, void* userToken)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(commandLine, flags, static_cast<int>(redirect), static_cast<HANDLE>(userToken));
    return guarded(
        startFailure, [&] { m_process = std::make_shared<process::Process>(commandLine, flags, redirect, userToken); });
}

bool Process::start(
    const std::wstring& executable, const std::wstring& arguments, const process::Credentials& credentials)
{
    VX_LOG_SCOPE();
    VX_LOG_VALUES(executable, arguments);
    return guardedAgainst<std::exception>(startFailure,
        [&] { m_process = std::make_shared<process::Process>(executable, arguments, std::wstring(), credentials); });
}

void Process::wait()
{
    VX_LOG_SCOPE();
    sync::details::waitForSingleObject(m_process ? m_process->getHandle() : nullptr, sync::infinite);
}

std::uint32_t Process::getReturnCode()
{
    if (!m_process)
        VX_THROW_WIN32(ERROR_INVALID_HANDLE);
    return m_process->getReturnCode();
}

const SharedHandle& Process::getHandle()
{
    static const SharedHandle none;
    return m_process ? m_process->processHandle() : none;
}

} // namespace vx::tarn::common
