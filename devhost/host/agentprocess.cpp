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

unsigned long runAgent(
    const std::filesystem::path& folder, const std::wstring& arguments, std::chrono::milliseconds timeout)
{
    const auto program = folder / L"tarnag.exe";
    auto line = L"\"" + program.native() + L"\" " + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(
            program.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, folder.c_str(), &startup, &process))
        throw CommandError(ExitCode::Failed, "cannot start " + toText(program) + ": " + systemText(GetLastError()));
    CloseHandle(process.hThread);
    DWORD code = 0;
    const bool ended = WaitForSingleObject(process.hProcess, static_cast<DWORD>(timeout.count())) == WAIT_OBJECT_0;
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hProcess);
    if (!ended)
        throw CommandError(ExitCode::TimedOut, toText(program) + " has not ended in time");
    return code;
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
