#include "host/agentprocess.h"

#include "common/factory/commonfactory.h"
#include "common/patchstorage/ipatchstorage.h"
#include "host/agentdirectory.h"
#include "host/exitcode.h"
#include "host/systemtext.h"

#include <windows.h>

namespace devhost::host {

namespace {

constexpr std::chrono::seconds bootWorkTimeout(60);

bool hasDeploymentToFinish()
{
    const auto storage = vx::tarn::common::CommonFactory().createPatchStorage();
    return storage->hasPatchStates() && !storage->isInstallationFinished();
}

} // namespace

std::optional<unsigned long> waitForExit(void* process, std::chrono::milliseconds timeout)
{
    DWORD code = 0;
    const bool ended = WaitForSingleObject(process, static_cast<DWORD>(timeout.count())) == WAIT_OBJECT_0;
    return ended && GetExitCodeProcess(process, &code) ? std::optional(code) : std::nullopt;
}

StartedProcess startProcess(
    const std::filesystem::path& program, std::wstring commandLine, const std::filesystem::path& folder)
{
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, folder.c_str(),
            &startup, &process))
        throw CommandError(ExitCode::Failed, "cannot start " + toText(program) + ": " + systemText(GetLastError()));
    const vx::KernelHandle thread(process.hThread);
    return {std::make_shared<vx::KernelHandle>(process.hProcess), process.dwProcessId};
}

unsigned long runAgent(
    const std::filesystem::path& folder, const std::wstring& arguments, std::chrono::milliseconds timeout)
{
    const auto program = folder / L"tarnag.exe";
    const auto process = startProcess(program, L"\"" + program.native() + L"\" " + arguments, folder);
    if (const auto code = waitForExit(process.handle->get(), timeout))
        return *code;
    throw CommandError(ExitCode::TimedOut, toText(program) + " has not ended in time");
}

std::optional<unsigned long> runBootWork()
{
    if (!hasDeploymentToFinish())
        return std::nullopt;
    const auto folder = readAgentDirectory();
    if (!folder)
        throw CommandError(ExitCode::Failed, "no agent's folder in the registry (run --agent-dir)");
    return runAgent(*folder, L"-c continue", bootWorkTimeout);
}

} // namespace devhost::host
