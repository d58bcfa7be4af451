#include "host/taskprocess.h"

#include "host/exitcode.h"
#include "host/systemtext.h"
#include "machine/taskrun.h"
#include "vxtl/str.h"

#include <windows.h>

namespace devhost::host {

namespace {

using nlohmann::json;

std::wstring textOf(const json& action, const char* name)
{
    return vx::str::fromUtf8(action.value(name, ""));
}

std::wstring expand(const std::wstring& text)
{
    std::wstring expanded(ExpandEnvironmentStringsW(text.c_str(), nullptr, 0), L'\0');
    ExpandEnvironmentStringsW(text.c_str(), expanded.data(), static_cast<DWORD>(expanded.size()));
    expanded.resize(expanded.find(L'\0'));
    return expanded;
}

std::wstring systemFolder()
{
    wchar_t path[MAX_PATH];
    return {path, GetSystemDirectoryW(path, MAX_PATH)};
}

StartedTask start(const std::wstring& path, const std::wstring& arguments, const std::wstring& folder)
{
    // Named by itself: of an unquoted path with blanks the system would try each beginning.
    const auto program = vx::str::trim(path, L"\"");
    auto line = arguments.empty() ? path : path + L" " + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(
            program.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, folder.c_str(), &startup, &process))
        throw CommandError(ExitCode::Failed, "cannot start " + toText(program) + ": " + systemText(GetLastError()));
    const vx::KernelHandle thread(process.hThread);
    return {
        machine::runOf(process.hProcess, process.dwProcessId), std::make_shared<vx::KernelHandle>(process.hProcess)};
}

} // namespace

StartedTask startTask(const machine::ScheduledTask& task)
{
    const auto actions = task.definition.value("Actions", json::array());
    if (actions.empty())
        throw CommandError(ExitCode::Failed, task.path + " has no action");
    const auto& action = actions.front();
    const auto folder = textOf(action, "WorkingDirectory");
    return start(
        expand(textOf(action, "Path")), textOf(action, "Arguments"), folder.empty() ? systemFolder() : expand(folder));
}

} // namespace devhost::host
