#include "bench/comparison.h"
#include "bench/sandbox.h"
#include "idle.h"
#include "logging-backend/processlogger.h"
#include "reading.h"
#include "startlatency.h"

#include <cstdio>
#include <stdexcept>
#include <windows.h>

namespace {

namespace fs = std::filesystem;

constexpr int infoLevel = 4;
/// The exceptions' run-time leaves handles behind at each unload, so not many more in one process.
constexpr int loads = 100;

fs::path programFolder()
{
    wchar_t name[MAX_PATH];
    GetModuleFileNameW(nullptr, name, MAX_PATH);
    return fs::path(name).parent_path();
}

bool compareSizes(const fs::path& floor, const fs::path& ours)
{
    constexpr double reach = 2.1;
    const auto kilobytes = [](const fs::path& file) { return static_cast<double>(fs::file_size(file)) / 1024; };
    const double ratio = kilobytes(ours) / kilobytes(floor);
    return printReading("stripped library, size", reading(kilobytes(floor), " KB"), reading(kilobytes(ours), " KB"),
        reading(ratio, "x"), "<= 2.10x", ratio <= reach);
}

bench::Measure loading(const fs::path& library)
{
    return bench::perBatch(1, [library] {
        const HMODULE module = LoadLibraryW(library.c_str());
        if (!module || !FreeLibrary(module))
            throw std::runtime_error("a library can't be loaded: " + library.string());
    });
}

bool run()
{
    const bench::Sandbox sandbox;
    const fs::path folder = programFolder();
    const fs::path floor = folder / "stripped" / "bench-empty-dll.dll";
    const fs::path ours = folder / "stripped" / "tarnhd.dll";
    bench::Comparison table("The plug-in");
    VxQrlLogging::open("bench", "plugin", infoLevel, 0);
    bool holds = measureStartLatency();
    holds &= measureObservedStart(folder);
    VxQrlLogging::close();
    holds &= compareSizes(floor, ours);
    table.row("LoadLibrary and FreeLibrary", loading(floor), loading(ours), bench::Reach::timeUpTo(2.0), loads);
    holds &= measureIdle(folder / "tarnhd.dll", sandbox.root());
    return holds && table.exitCode() == 0;
}

} // namespace

int main()
{
    try {
        return run() ? 0 : 1;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "bench-plugin: %s\n", e.what());
        return 2;
    }
}
