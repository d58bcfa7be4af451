#include "bench/comparison.h"
#include "bench/datafolder.h"
#include "logreading/logreader.h"
#include "tarnctl/log/pageoutput.h"
#include "tarnctl/log/textoutput.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <vector>
#include <windows.h>

#include <psapi.h>

namespace {

constexpr std::size_t logSize = 100'000'000;
constexpr int repeats = 5;

std::u16string record(std::size_t number)
{
    static const char* const messages[] = {"Waiting for event...", "    { vx::tarn::TarnHandler::startScan",
        "Setting 'windows.tarnpatch.enabled' not found - fallback to default value", "tarnag.exe start event signaled.",
        "Process finished with return code: 0"};
    char text[200];
    std::snprintf(text, sizeof(text), "2026-11-22 10:%02u:%02u.%03u [0384.%04x]  I: %s\r\n",
        static_cast<unsigned>(number / 60'000 % 60), static_cast<unsigned>(number / 1000 % 60),
        static_cast<unsigned>(number % 1000), static_cast<unsigned>(number % 7), messages[number % 5]);
    const std::string_view view(text);
    return {view.begin(), view.end()};
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
    std::vector<wchar_t> wide(32'768);
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
    logreading::LogReader reader(log);
    reader.rewind();
    const auto sink = [&](std::string_view line) {
        const auto parsed = logreading::parseRecord(line);
        output.line(line, parsed ? &*parsed : nullptr);
    };
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
