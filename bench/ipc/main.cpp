// What our two ends add to a message that the library carries: the body is written, read and handed on. The floor sends
// bytes to a callback that looks at none. Each message has a connection of its own in the stand-in, so both sides pay
// that of the development host's library, not of another. What is
// added grows with the body, so the bodies are as small as notices between two programs are.

#include "bench/comparison.h"
#include "ipc-api/ipcclient.h"
#include "ipc-api/ipcserver.h"
#include "ipc/instance.h"

#include <nlohmann/json.hpp>
#include <windows.h>

using namespace vx::tarn::common;
using nlohmann::json;

namespace {

constexpr std::size_t messages = 50; ///< of one repeat
constexpr int repeats = 25;

std::atomic<unsigned> received{0};

std::int32_t VX_STDCALL count(std::uint32_t, const void*, std::uint32_t, const void*, void*)
{
    ++received;
    return 0;
}

json bodyOf(std::size_t patches)
{
    json body = {{"command", "deployed"}, {"patches", json::array()}};
    for (std::size_t i = 0; i < patches; ++i)
        body["patches"].push_back({{"update_id", std::to_string(100'000 + i)}, {"status", "installation_completed"}});
    return body;
}

void compare(bench::Comparison& table, const IpcFunctions& functions, const json& body)
{
    const std::string text = body.dump();
    IPCClient client("ours", 1);
    const auto floor = bench::perBatch(messages, [&] {
        for (std::size_t i = 0; i < messages; ++i)
            bench::keep(functions.send("bare", 1, 2, text.data(), static_cast<std::uint32_t>(text.size()), 0, 0));
    });
    const auto ours = bench::perBatch(messages, [&] {
        for (std::size_t i = 0; i < messages; ++i)
            bench::keep(client.send(2, body));
    });
    table.row(
        "message of " + std::to_string(text.size()) + " bytes", floor, ours, bench::Reach::rateFrom(0.9), repeats);
}

} // namespace

int main()
{
    devhost::ipc::exportInstance(L"bench-" + std::to_wstring(GetCurrentProcessId()));
    bench::Comparison table("IPC messages, each answered before the next, beside the library's own functions");
    const IpcFunctions* const functions = IpcLibrary::ofProcess().ensureIpcLoaded();
    IPCServer server("ours", 0);
    std::uint32_t bare = 0;
    const bool isServed = functions && functions->runServer(&bare, "bare", 0, count, nullptr, 0) == 0 &&
                          server.start([](std::uint32_t, const json&) { return ++received, 0; }) == 0;
    if (isServed) {
        compare(table, *functions, bodyOf(0));
        compare(table, *functions, bodyOf(10));
        functions->stopServer(bare);
    }
    // Of two rows: the pairs and the one before them.
    table.note("every message arrived", isServed && received == 2 * 2 * (repeats + 1) * messages);
    return table.exitCode();
}
