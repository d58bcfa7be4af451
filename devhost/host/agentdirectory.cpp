#include "host/agentdirectory.h"

#include "common/utils/folders.h"
#include "host/exitcode.h"
#include "host/systemtext.h"
#include "journal/journal.h"
#include "vxtl/registry.h"
#include "vxtl/win32exception.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace devhost::host {

namespace {

std::string join(const nlohmann::json& arguments)
{
    std::string text;
    for (const auto& argument : arguments)
        text += (text.empty() ? "" : " ") + argument.get<std::string>();
    return text;
}

void takeEntry(std::vector<AgentStart>& starts, const nlohmann::json& entry)
{
    const auto pid = entry.at("pid").get<unsigned long>();
    if (entry.at("event") == "start") {
        starts.push_back({entry.at("time"), pid, join(entry.at("arguments")), {}});
        return;
    }
    if (entry.at("event") != "end")
        return;
    // Process ids come back: the end belongs to the latest start with that id.
    const auto start = std::ranges::find(starts.rbegin(), starts.rend(), pid, &AgentStart::pid);
    if (start != starts.rend())
        start->exitCode = entry.at("exit_code").get<int>();
}

} // namespace

std::optional<std::filesystem::path> readAgentDirectory()
{
    const auto folder = vx::tarn::common::utils::getInstallationPath(vx::registry::createWin32Registry());
    return folder.empty() ? std::nullopt : std::optional<std::filesystem::path>(folder);
}

void writeAgentDirectory(const std::filesystem::path& folder)
{
    try {
        vx::registry::createWin32Registry()
            ->createKey(L"HKEY_LOCAL_MACHINE\\Software\\Vantorix\\tarn", vx::registry::writeAccess)
            ->setStringValue(L"InstallationDirectory", std::filesystem::absolute(folder).native());
    } catch (const vx::Win32Exception& exception) {
        throw CommandError(
            ExitCode::Failed, "cannot write the agent's folder to the registry: " + systemText(exception.code()));
    }
}

std::vector<AgentStart> readAgentStarts(const std::filesystem::path& folder)
{
    std::vector<AgentStart> starts;
    for (const auto& entry : journal::Journal(folder / journal::agentJournal).read()) {
        try {
            takeEntry(starts, entry);
        } catch (const nlohmann::json::exception&) {
            // One that somebody edited.
        }
    }
    return starts;
}

} // namespace devhost::host
