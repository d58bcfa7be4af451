#include "process/systemlaunchdriver.h"

#include "priveleges/lsauserprivilegesholerimpl.h"
#include "process/effectiveadminrights.h"
#include "process/launchfailure.h"
#include "vxtl-process/users/useraccountpropertiesimpl.h"

#include <windows.h>

#include <userenv.h>

namespace vx::process {

namespace {

STARTUPINFOW startupInfo(const LaunchRequest& request)
{
    STARTUPINFOW info{};
    info.cb = sizeof(info);
    if (request.standardHandles) {
        info.dwFlags |= STARTF_USESTDHANDLES;
        info.hStdInput = request.standardHandles->input;
        info.hStdOutput = request.standardHandles->output;
        info.hStdError = request.standardHandles->error;
    }
    if (request.showWindow) {
        info.dwFlags |= STARTF_USESHOWWINDOW;
        info.wShowWindow = *request.showWindow;
    }
    if (!request.desktop.empty())
        info.lpDesktop = const_cast<wchar_t*>(request.desktop.c_str());
    return info;
}

const wchar_t* orNull(const std::wstring& text)
{
    return text.empty() ? nullptr : text.c_str();
}

SharedHandle own(HANDLE handle)
{
    return std::make_shared<KernelHandle>(handle);
}

LaunchedProcess own(const PROCESS_INFORMATION& information)
{
    return {own(information.hProcess), own(information.hThread)};
}

} // namespace

// The system writes into the command line, hence the copies.

LaunchedProcess SystemLaunchDriver::create(const LaunchRequest& request)
{
    std::wstring commandLine = request.commandLine;
    STARTUPINFOW startup = startupInfo(request);
    PROCESS_INFORMATION information{};
    if (!CreateProcessW(orNull(request.application), commandLine.data(), nullptr, nullptr, TRUE, request.flags,
            request.environment, orNull(request.workingDirectory), &startup, &information))
        VX_THROW_LAUNCH(L"Can't create process");
    return own(information);
}

LaunchedProcess SystemLaunchDriver::createAsUser(void* token, const LaunchRequest& request)
{
    std::wstring commandLine = request.commandLine;
    STARTUPINFOW startup = startupInfo(request);
    PROCESS_INFORMATION information{};
    if (!CreateProcessAsUserW(token, orNull(request.application), commandLine.data(), nullptr, nullptr, TRUE,
            request.flags, request.environment, orNull(request.workingDirectory), &startup, &information))
        VX_THROW_LAUNCH(L"CreateProcessAsUser failed");
    return own(information);
}

LaunchedProcess SystemLaunchDriver::createWithLogon(const Credentials& credentials, const LaunchRequest& request)
{
    std::wstring commandLine = request.commandLine;
    STARTUPINFOW startup = startupInfo(request);
    PROCESS_INFORMATION information{};
    if (!CreateProcessWithLogonW(credentials.user.c_str(), credentials.domain.c_str(), credentials.password.c_str(),
            LOGON_WITH_PROFILE, orNull(request.application), commandLine.data(), request.flags, request.environment,
            orNull(request.workingDirectory), &startup, &information))
        VX_THROW_LAUNCH(L"CreateProcessWithLogonW failed");
    return own(information);
}

SharedHandle SystemLaunchDriver::logon(const Credentials& credentials)
{
    HANDLE token = nullptr;
    if (!LogonUserW(credentials.user.c_str(), credentials.domain.c_str(), credentials.password.c_str(),
            LOGON32_LOGON_NETWORK, LOGON32_PROVIDER_DEFAULT, &token))
        VX_THROW_LAUNCH(L"LogonUser failed");
    return own(token);
}

SharedHandle SystemLaunchDriver::duplicatePrimary(void* token)
{
    HANDLE duplicate = nullptr;
    if (!DuplicateTokenEx(
            token, MAXIMUM_ALLOWED, nullptr, static_cast<SECURITY_IMPERSONATION_LEVEL>(3), TokenPrimary, &duplicate))
        VX_THROW_LAUNCH(L"DuplicateTokenEx failed");
    return own(duplicate);
}

std::shared_ptr<void> SystemLaunchDriver::createEnvironment(void* token)
{
    void* environment = nullptr;
    if (!CreateEnvironmentBlock(&environment, token, TRUE))
        VX_THROW_LAUNCH(L"Cannot create environment block");
    return {environment, [](void* block) { DestroyEnvironmentBlock(block); }};
}

bool SystemLaunchDriver::hasEffectiveAdminRights(void* token)
{
    return detail::hasEffectiveAdminRights(token);
}

std::shared_ptr<users::UserAccountProperties> SystemLaunchDriver::accountProperties(const users::UserAccount& account)
{
    return std::make_shared<users::UserAccountPropertiesImpl>(account);
}

std::shared_ptr<priveleges::IPrivelegesHolder> SystemLaunchDriver::privelegesHolder(const std::wstring& qualifiedName)
{
    return std::make_shared<priveleges::LsaUserPrivilegesHolerImpl>(qualifiedName, nullptr);
}

LaunchDriver& systemLaunchDriver()
{
    static SystemLaunchDriver driver;
    return driver;
}

} // namespace vx::process
