#include "threadswitches.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <windows.h>

namespace {

namespace fs = std::filesystem;

// Wine runs each thread as one of the system below, whose process files count the switches of each.
constexpr auto processes = L"Z:\\proc";

bool isThisProgram(const fs::path& process)
{
    wchar_t name[MAX_PATH];
    GetModuleFileNameW(nullptr, name, MAX_PATH);
    std::string first;
    // The first word of the command line, which ends with a zero.
    std::ifstream file(process / "cmdline", std::ios::binary);
    std::getline(file, first, '\0');
    return first.ends_with(fs::path(name).filename().string());
}

/// This process's folder: the file system's server opens the files, so "self" is not this process.
fs::path findOwnFolder()
{
    fs::path own;
    unsigned long ownId = 0;
    std::error_code error;
    for (fs::directory_iterator entry(processes, error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (name.find_first_not_of("0123456789") == std::string::npos && isThisProgram(entry->path()) &&
            std::stoul(name) > ownId) {
            ownId = std::stoul(name);
            own = entry->path();
        }
    }
    return own;
}

unsigned long long switches(const fs::path& thread)
{
    unsigned long long count = 0;
    std::ifstream file(thread / "status");
    for (std::string line; std::getline(file, line);) {
        const auto at = line.find("voluntary_ctxt_switches:");
        if (at != std::string::npos)
            count += std::stoull(line.substr(line.find(':') + 1));
    }
    return count;
}

} // namespace

std::optional<ThreadSwitches> readThreadSwitches()
{
    static const fs::path own = findOwnFolder();
    ThreadSwitches result;
    std::error_code error;
    for (fs::directory_iterator thread(own / "task", error); !error && thread != fs::directory_iterator();
         thread.increment(error)) {
        if (thread->path().filename() != own.filename())
            result[std::stoul(thread->path().filename().string())] = switches(thread->path());
    }
    return result.empty() ? std::nullopt : std::optional(result);
}

double processMilliseconds()
{
    FILETIME created, ended, kernel, user;
    GetProcessTimes(GetCurrentProcess(), &created, &ended, &kernel, &user);
    const auto ticks = [](const FILETIME& time) { return time.dwHighDateTime * 4294967296.0 + time.dwLowDateTime; };
    return (ticks(kernel) + ticks(user)) / 1e4;
}
