// Whatever bytes a message has for its body, the handler gets a value: what the JSON library reads, null for no bytes,
// and for what it refuses or what nests too deep the bytes themselves as a text.

#include "input.h"
#include "ipc-api/ipcserver.h"

using namespace vx::tarn::common;
using nlohmann::json;

namespace {

IpcCallback* callback = nullptr;

std::uint32_t runServer(std::uint32_t*, const char*, std::uint32_t, IpcCallback* function, void*, std::uint32_t)
{
    callback = function;
    return 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    IpcLibrary library([](IpcFunctions& functions) {
        functions.runServer = runServer;
        return vx::delayload::LoadResult{};
    });
    IPCServer server("c", 0, library);
    std::optional<json> received;
    server.start([&](std::uint32_t, const json& body) { return received = body, 1; });
    fuzz::require(callback(0, data, static_cast<std::uint32_t>(size), nullptr, &server) == 1, "the handler's result");
    const std::string text(fuzz::bytes(data, size));
    const json read = json::parse(text, nullptr, false);
    fuzz::require(received == read || received == (text.empty() ? json() : json(text)), "what it says or itself");
    return 0;
}
