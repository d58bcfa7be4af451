#include "tarnctl/health/processfacts.h"

#include "tarnctl/health/gather.h"
#include "vxtl/handle.h"
#include "vxtl/win32exception.h"
#include "vxtl/wow64.h"

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

enum class Look { Has, HasNot, Refused };

/// A 64-bit process can't have a 32-bit library, and need not be looked into.
bool canHavePlugin(HANDLE process)
{
    static const bool isSystemWider = vx::wow64::isWow64();
    BOOL isNarrow = TRUE;
    return !isSystemWider || !IsWow64Process(process, &isNarrow) || isNarrow;
}

/// Module lists of a process that is just starting or loading are refused for the moment.
vx::KernelHandle takeModules(DWORD processId)
{
    constexpr int tries = 20;
    for (int attempt = 1;; ++attempt) {
        const auto snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPMODULE | TH32CS_SNAPMODULE32, processId);
        if (snapshot != INVALID_HANDLE_VALUE || GetLastError() != ERROR_BAD_LENGTH || attempt == tries)
            return vx::KernelHandle(snapshot);
    }
}

Look lookForPlugin(DWORD processId)
{
    const vx::KernelHandle process(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId));
    if (process.isValid() ? !canHavePlugin(process.get()) : GetLastError() != ERROR_ACCESS_DENIED)
        return Look::HasNot;
    const auto snapshot = takeModules(processId);
    if (!snapshot.isValid())
        return GetLastError() == ERROR_ACCESS_DENIED ? Look::Refused : Look::HasNot;
    MODULEENTRY32W module{};
    module.dwSize = sizeof(module);
    for (auto more = Module32FirstW(snapshot.get(), &module); more; more = Module32NextW(snapshot.get(), &module))
        if (isSameName(module.szModule, pluginName))
            return Look::Has;
    return Look::HasNot;
}

std::int64_t ticksOf(const FILETIME& time)
{
    return std::int64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

/// Adds how long an agent runs, empty for one that may not be asked; nothing for one that has just ended.
void addAgent(std::vector<std::optional<std::int64_t>>& agents, DWORD processId)
{
    const vx::KernelHandle process(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId));
    if (!process.isValid()) {
        if (GetLastError() == ERROR_ACCESS_DENIED)
            agents.emplace_back();
        return;
    }
    FILETIME started, exited, kernel, user, now;
    if (!GetProcessTimes(process.get(), &started, &exited, &kernel, &user))
        return agents.emplace_back(), void();
    GetSystemTimeAsFileTime(&now);
    if (ticksOf(exited) == 0)
        agents.emplace_back((ticksOf(now) - ticksOf(started)) / 10'000'000);
}

} // namespace

void gatherProcesses(Facts& facts)
{
    std::vector<std::optional<std::int64_t>> agents;
    std::vector<std::uint32_t> hosts;
    std::size_t refused = 0;
    try {
        forEachProcess([&](const PROCESSENTRY32W& process) {
            if (isSameName(process.szExeFile, agentName))
                return addAgent(agents, process.th32ProcessID);
            const auto look = lookForPlugin(process.th32ProcessID);
            if (look == Look::Has)
                hosts.push_back(process.th32ProcessID);
            refused += look == Look::Refused ? 1 : 0;
        });
    } catch (const std::exception& exception) {
        facts.agentRunSeconds.trouble = facts.pluginProcesses.trouble = textOf(exception);
        return;
    }
    facts.agentRunSeconds.value = std::move(agents);
    // It may be in one of those.
    if (hosts.empty() && refused > 0)
        facts.pluginProcesses.trouble = std::to_string(refused) + " processes may not be looked into";
    else
        facts.pluginProcesses.value = std::move(hosts);
}

} // namespace tarnctl::health
