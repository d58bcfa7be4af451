// Whatever bytes a message has for its body, the handler gets a value: what the JSON library reads, null for no bytes,
// and for what it refuses or what nests too deep the bytes themselves as a text.

#include "input.h"
#include "ipc-api/ipcserver.h"

#include <algorithm>

using namespace vx::tarn::common;
using nlohmann::json;

namespace {

IpcCallback* callback = nullptr;

std::uint32_t runServer(std::uint32_t*, const char*, std::uint32_t, IpcCallback* function, void*, std::uint32_t)
{
    callback = function;
    return 0;
}

/// Of the arrays and objects in one another.
std::size_t depthOf(const json& value)
{
    std::size_t deepest = 0;
    if (value.is_structured())
        for (const json& element : value)
            deepest = std::max(deepest, 1 + depthOf(element));
    return value.is_structured() ? std::max<std::size_t>(deepest, 1) : 0;
}

json expected(const std::string& text)
{
    const json value = json::parse(text, nullptr, false);
    return text.empty() ? json() : value.is_discarded() || depthOf(value) > vx::deepestJson ? json(text) : value;
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
    fuzz::require(received == expected(std::string(fuzz::bytes(data, size))), "the same by both");
    return 0;
}
