#include "bareloop.h"
#include "serverprocess.h"

#include "bench/comparison.h"
#include "bench/datafolder.h"
#include "common/downloader/downloaddriver.h"
#include "common/downloader/downloader.h"
#include "common/internetproxy/nointernetproxy.h"
#include "common/internetproxy/sessiondriver.h"
#include "common/wininet/wininetdriver.h"
#include "support/footprint.h"
#include "vxtl/registry.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

using namespace vx::tarn::common;

namespace {

constexpr std::ptrdiff_t mebibyte = 1 << 20;
constexpr std::ptrdiff_t bodyBuffer = 256 * 1024;

// Heaps only: the system's own threads, which come and go, have stacks as large as what is looked for.
std::ptrdiff_t memoryInUse()
{
    return support::footprint().heapBytes;
}

/// Looks at the memory now and then while a body comes.
struct WatchingDriver : WinInetDriver {
    bool internetReadFile(void* request, void* buffer, unsigned long size, unsigned long* read) override
    {
        if (reads++ % 256 == 0)
            most = std::max(most, memoryInUse());
        return WinInetDriver::internetReadFile(request, buffer, size, read);
    }
    std::size_t reads = 0;
    std::ptrdiff_t most = 0;
};

void download(std::shared_ptr<IWinInetDriver> internet, const std::wstring& url, const std::wstring& file)
{
    Downloader downloader(std::make_shared<NoInternetProxy>(std::make_shared<SessionDriver>(), false),
        std::move(internet), vx::registry::createWin32Registry(), std::make_shared<DownloadDriver>());
    if (downloader.download(url, file, {}) != exitstatus::success)
        throw std::runtime_error("a download fails");
}

void compareRates(bench::Comparison& table, const std::wstring& file)
{
    const ServerProcess server(128);
    const auto floor = bench::perBatch(1, [&] { downloadBare(server.url(), file); });
    const auto ours = bench::perBatch(1, [&] { download(std::make_shared<WinInetDriver>(), server.url(), file); });
    table.row("download of 128 MiB", floor, ours, bench::Reach::rateFrom(0.95), 7);
}

void watchMemory(bench::Comparison& table, const std::wstring& file)
{
    const ServerProcess server(1024);
    const auto driver = std::make_shared<WatchingDriver>();
    const std::ptrdiff_t before = memoryInUse();
    download(driver, server.url(), file);
    const std::ptrdiff_t grown = driver->most - before;
    const bool whole = std::filesystem::file_size(file) == std::uintmax_t(1) << 30;
    table.note("memory of a download of 1 GiB: " + std::to_string(grown / 1024) + " KiB more than before it, over " +
                   std::to_string(driver->reads) + " reads; at most the buffer and 1 MiB",
        whole && grown <= bodyBuffer + mebibyte);
}

} // namespace

int main(int argc, char** argv)
{
    ServerProcess::serveIfAsked(argc, argv);
    try {
        const bench::DataFolder folder;
        const std::wstring file = (folder.path() / "file").wstring();
        bench::Comparison table("Downloads over the loopback; floor: a bare loop of the same calls");
        compareRates(table, file);
        watchMemory(table, file);
        return table.exitCode();
    } catch (const std::exception& e) {
        std::fprintf(stderr, "bench-download: %s\n", e.what());
        return 2;
    }
}
