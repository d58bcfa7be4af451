#include "host/taskprocess.h"

#include "host/agentprocess.h"
#include "host/exitcode.h"
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
    const auto process = startProcess(program, arguments.empty() ? path : path + L" " + arguments, folder);
    return {machine::runOf(process.handle->get(), process.id), process.handle};
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
