#include "bench/comparison.h"
#include "bench/datafolder.h"
#include "logreading/logreader.h"
#include "tarnctl/log/filter.h"
#include "tarnctl/log/pageoutput.h"
#include "tarnctl/log/route.h"
#include "tarnctl/log/textoutput.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <vector>
#include <windows.h>

#include <psapi.h>

namespace {

constexpr std::size_t logSize = 100'000'000;
constexpr int repeats = 5;

// What the plug-in writes at its usual level while nothing much happens, and one start of the agent. The longest line
// is that of a key which was never set.
constexpr std::array<const char*, 14> idle = {
    "Failed to read a bool value: windows.tarnpatch.enabled. Exception caught: Type: vx::settings::NotFoundException, "
    "Setting: windows.tarnpatch.enabled, Reason: Setting in not found, Function: "
    "vx::meridia::SettingsApi::getBoolValue, File: sdk/meridia-settings/src/storefailure.cpp, Line: 12. Will be used a "
    "cached value",
    "Setting 'windows.tarnpatch.enabled' not found - fallback to default value",
    "Tarnpatch maximum rescanning period is 24 hours. It's 86400 seconds.",
    "CreateMutex faile. LastError = 0, hanlde = 0x13c", "Windows updates has never been installed on this computer",
    "Windows update has never been installed",
    "Setting 'windows.tarnpatch.installation.reboot.ask_user' not found - fallback to default value",
    "Setup action scheduler. Polling interval: 10 minute(s)", "Time to poll WUS status.", "WUS not running",
    "{ vx::tarn::TarnHandler::startScan", "  { vx::tarn::common::UpdaterLauncher::startScan",
    "  } vx::tarn::common::UpdaterLauncher::startScan", "} vx::tarn::TarnHandler::startScan"};
constexpr std::array<const char*, 7> start = {"Scan start time: 13440000000000000", "tarnag.exe start event signaled.",
    "Start reason is: 1",
    "Starting process C:\\Program Files\\agent\\tarnag.exe. Arguments: ", "Process finished with return code: 0",
    "Update a scanning remote operation status: 7", "Waiting for event..."};
constexpr std::size_t period = 700; ///< lines from one start to the next

const char* messageOf(std::size_t number)
{
    const auto place = number % period;
    return place < start.size() ? start[place] : idle[place % idle.size()];
}

std::u16string record(std::size_t number)
{
    const auto* message = messageOf(number);
    char header[64];
    std::snprintf(header, sizeof(header),
        "2026-11-22 10:%02u:%02u.%03u [0384.%04x] %s: ", static_cast<unsigned>(number / 60'000 % 60),
        static_cast<unsigned>(number / 1000 % 60), static_cast<unsigned>(number % 1000),
        static_cast<unsigned>(number % period < start.size() ? 7 : number % 7), message == idle[0] ? ".W" : " I");
    const auto line = std::string(header) + message + "\r\n";
    return {line.begin(), line.end()};
}

void writeLog(const std::filesystem::path& file)
{
    std::u16string text(1, u'\uFEFF');
    for (std::size_t number = 0; text.size() * sizeof(char16_t) < logSize; ++number)
        text += record(number);
    std::ofstream(file, std::ios::binary)
        .write(
            reinterpret_cast<const char*>(text.data()), static_cast<std::streamsize>(text.size() * sizeof(char16_t)));
}

/// Reads, converts, prints.
void printBare(const std::filesystem::path& log, const std::filesystem::path& target)
{
    std::ifstream in(log, std::ios::binary);
    std::ofstream out(target, std::ios::binary);
    std::vector<wchar_t> wide(131'072);
    std::vector<char> narrow(3 * wide.size());
    while (in.read(reinterpret_cast<char*>(wide.data()), static_cast<std::streamsize>(wide.size() * sizeof(wchar_t))),
        in.gcount() > 0) {
        const auto size = WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(in.gcount() / sizeof(wchar_t)),
            narrow.data(), static_cast<int>(narrow.size()), nullptr, nullptr);
        out.write(narrow.data(), size);
    }
}

template <typename Output>
void give(const std::filesystem::path& log, const std::filesystem::path& target)
{
    std::ofstream stream(target, std::ios::binary);
    Output output(stream);
    tarnctl::log::Filter filter({});
    logreading::LogReader reader(log);
    const auto sink = route(filter, output);
    reader.rewind();
    reader.read(sink);
    reader.finish(sink);
    output.end();
}

struct PlainText : tarnctl::log::TextOutput {
    explicit PlainText(std::ostream& stream) : TextOutput(stream, Colours::None) {}
};

std::size_t memoryPeak()
{
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
    return counters.PeakPagefileUsage;
}

} // namespace

int main()
{
    const bench::DataFolder folder;
    const auto log = folder.path() / "tarnhd.log", target = folder.path() / "out";
    writeLog(log);
    bench::Comparison table("A log of 100 MB; floor: a bare loop that reads, converts and prints");
    const auto bare = bench::perBatch(1, [&] { printBare(log, target); });
    const auto text = bench::perBatch(1, [&] { give<PlainText>(log, target); });
    const auto page = bench::perBatch(1, [&] { give<tarnctl::log::PageOutput>(log, target); });
    const auto before = memoryPeak();
    table.row("tarnctl log", bare, text, bench::Reach::timeUpTo(1.5), repeats);
    const auto grown = memoryPeak() - before;
    table.note("memory for it: " + std::to_string(grown / 1024) + " KiB more at most", grown < 4'000'000);
    table.row("tarnctl log --html", bare, page, bench::Reach::timeUpTo(3.0), repeats);
    return table.exitCode();
}
