#pragma once

#include "ipc-api/ipcclient.h"
#include "ipc-api/ipcserver.h"
#include "support/logcapture.h"

#include <nlohmann/json.hpp>

namespace vx::tarn::common {

/// Both ends over functions that note their calls. The functions find the test through a global.
struct IpcTest : testing::Test {
    IpcTest() { test = this; }

    static std::uint32_t note(const std::string& call)
    {
        test->calls.push_back(call);
        return test->code;
    }
    static std::uint32_t VX_STDCALL runServer(std::uint32_t* handle, const char* channel, std::uint32_t access,
        IpcCallback* function, void* address, std::uint32_t)
    {
        *handle = test->code == 0 ? ++test->lastHandle : 0;
        test->callback = function;
        test->context = address;
        if (test->messageAtOnce)
            test->deliver("1");
        return note(std::string("run ") + channel + " " + std::to_string(access));
    }
    static std::uint32_t VX_STDCALL stopServer(std::uint32_t handle)
    {
        test->stopping();
        return note("stop " + std::to_string(handle));
    }
    static std::uint32_t VX_STDCALL send(const char* channel, std::uint32_t owner, std::uint32_t type, const void* data,
        std::uint32_t size, std::uint32_t, std::uint32_t)
    {
        const std::string body(static_cast<const char*>(data), size);
        return note(channel + (" " + std::to_string(owner) + " " + std::to_string(type) + " ") + body);
    }
    /// As the library does it: the body is not terminated.
    std::int32_t deliver(const std::string& body) const
    {
        std::vector<char> bytes(body.begin(), body.end());
        bytes.reserve(1); // an empty body need not be null
        return callback(5, bytes.data(), static_cast<std::uint32_t>(bytes.size()), nullptr, context);
    }

    delayload::LoadStatus status = delayload::LoadStatus::Success;
    std::uint32_t code = 0; ///< what the functions answer
    std::uint32_t lastHandle = 0;
    bool messageAtOnce = false; ///< before runServer returns
    std::function<void()> stopping = [] {};
    IpcCallback* callback = nullptr;
    void* context = nullptr;
    std::vector<std::string> calls, taken;
    const support::LogCapture log;
    const IPCServer::Handler take = [this](std::uint32_t type, const nlohmann::json& data) {
        taken.push_back(std::to_string(type) + " " + data.dump());
        return 11;
    };
    IpcLibrary library{[this](IpcFunctions& functions) {
        note("load");
        functions = {runServer, stopServer, send};
        return delayload::LoadResult{status, "", ""};
    }};
    std::optional<IPCServer> server{std::in_place, "c", 9u, library};

    static inline IpcTest* test = nullptr;
};

} // namespace vx::tarn::common
