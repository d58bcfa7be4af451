#include "tarnctl/health/processfacts.h"

#include "vxtl/handle.h"
#include "vxtl/str.h"
#include "vxtl/win32exception.h"

#include <functional>
#include <windows.h>

#include <tlhelp32.h>

namespace tarnctl::health {

namespace {

constexpr wchar_t agentName[] = L"tarnag.exe";
constexpr wchar_t pluginName[] = L"tarnhd.dll";

bool isSameName(const wchar_t* left, const wchar_t* right)
{
    return CompareStringOrdinal(left, -1, right, -1, TRUE) == CSTR_EQUAL;
}

void forEachProcess(const std::function<void(const PROCESSENTRY32W&)>& visit)
{
    const vx::KernelHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    if (!snapshot.isValid())
        VX_THROW_WIN32(GetLastError());
    PROCESSENTRY32W process{};
    process.dwSize = sizeof(process);
    for (auto more = Process32FirstW(snapshot.get(), &process); more; more = Process32NextW(snapshot.get(), &process))
        visit(process);
}

bool hasPlugin(DWORD processId)
{
    const vx::KernelHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPMODULE | TH32CS_SNAPMODULE32, processId));
    if (!snapshot.isValid())
        return false;
    MODULEENTRY32W module{};
    module.dwSize = sizeof(module);
    for (auto more = Module32FirstW(snapshot.get(), &module); more; more = Module32NextW(snapshot.get(), &module))
        if (isSameName(module.szModule, pluginName))
            return true;
    return false;
}

std::int64_t ticksOf(const FILETIME& time)
{
    return std::int64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

/// 0 for one that may not be asked.
std::int64_t secondsSinceStart(DWORD processId)
{
    const vx::KernelHandle process(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId));
    FILETIME started, exited, kernel, user, now;
    if (!process.isValid() || !GetProcessTimes(process.get(), &started, &exited, &kernel, &user))
        return 0;
    GetSystemTimeAsFileTime(&now);
    return (ticksOf(now) - ticksOf(started)) / 10'000'000;
}

} // namespace

void gatherProcesses(Facts& facts)
{
    try {
        std::vector<std::int64_t> agents;
        std::size_t hosts = 0;
        forEachProcess([&](const PROCESSENTRY32W& process) {
            if (isSameName(process.szExeFile, agentName))
                agents.push_back(secondsSinceStart(process.th32ProcessID));
            else
                hosts += hasPlugin(process.th32ProcessID) ? 1 : 0;
        });
        facts.agentRunSeconds.value = std::move(agents);
        facts.pluginProcesses.value = hosts;
    } catch (const vx::Win32Exception& exception) {
        facts.agentRunSeconds.trouble = facts.pluginProcesses.trouble = vx::str::toUtf8Lossy(exception.wideWhat());
    }
}

} // namespace tarnctl::health
