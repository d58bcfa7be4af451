#include "host/agentdirectory.h"

#include "host/exitcode.h"
#include "host/systemtext.h"
#include "vxtl/parsejson.h"

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <windows.h>

namespace devhost::host {

namespace {

constexpr auto productKey = L"Software\\Vantorix\\tarn";
constexpr auto valueName = L"InstallationDirectory";

std::string join(const nlohmann::json& arguments)
{
    std::string text;
    for (const auto& argument : arguments)
        text += (text.empty() ? "" : " ") + argument.get<std::string>();
    return text;
}

void takeLine(std::vector<AgentStart>& starts, const nlohmann::json& entry)
{
    const auto pid = entry.at("pid").get<unsigned long>();
    if (entry.at("event") == "start") {
        starts.push_back({entry.at("time"), pid, join(entry.at("arguments")), {}});
        return;
    }
    // Process ids come back: the end belongs to the latest start with that id.
    const auto start = std::ranges::find(starts.rbegin(), starts.rend(), pid, &AgentStart::pid);
    if (start != starts.rend())
        start->exitCode = entry.at("exit_code").get<int>();
}

} // namespace

std::optional<std::filesystem::path> readAgentDirectory()
{
    wchar_t buffer[MAX_PATH + 1] = {};
    DWORD size = sizeof(buffer) - sizeof(wchar_t);
    // A 32-bit program sees the 32-bit view, as the plug-in does.
    const auto status = RegGetValueW(HKEY_LOCAL_MACHINE, productKey, valueName, RRF_RT_REG_SZ, nullptr, buffer, &size);
    return status == ERROR_SUCCESS ? std::optional<std::filesystem::path>(buffer) : std::nullopt;
}

void writeAgentDirectory(const std::filesystem::path& folder)
{
    HKEY key = nullptr;
    auto status = RegCreateKeyExW(HKEY_LOCAL_MACHINE, productKey, 0, nullptr, 0, KEY_SET_VALUE, nullptr, &key, nullptr);
    if (status == ERROR_SUCCESS) {
        const auto text = std::filesystem::absolute(folder).native();
        status = RegSetValueExW(key, valueName, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
            static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
        RegCloseKey(key);
    }
    if (status != ERROR_SUCCESS)
        throw CommandError(ExitCode::Failed,
            "cannot write the agent's folder to the registry: " + systemText(static_cast<unsigned long>(status)));
}

std::vector<AgentStart> readAgentStarts(const std::filesystem::path& folder)
{
    std::vector<AgentStart> starts;
    std::ifstream file(folder / L"tarnag.runs.jsonl");
    for (std::string line; std::getline(file, line);) {
        try {
            takeLine(starts, vx::parseJson(line));
        } catch (const nlohmann::json::exception&) {
            // A line that is just being written, or that somebody edited.
        }
    }
    return starts;
}

} // namespace devhost::host
