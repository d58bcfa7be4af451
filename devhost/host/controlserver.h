#pragma once

#include "host/controlpipe.h"

#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <thread>

namespace devhost::host {

/// Lets other programs of the same user, and administrators, drive a running host. One request at a time,
/// on a thread of its own.
class ControlServer {
public:
    /// Takes a request and gives the answer; an exception becomes the answer {"error": text}.
    using Handler = std::function<nlohmann::json(const nlohmann::json& request)>;

    /// Serves from now on. Throws CommandError.
    ControlServer(const std::wstring& instance, Handler handler);
    /// Waits for a handler that is running; not to be called from one.
    ~ControlServer();
    ControlServer(const ControlServer&) = delete;
    ControlServer& operator=(const ControlServer&) = delete;

private:
    void serve();
    void answer();

    Handler m_handler;
    ControlPipe m_pipe;
    void* m_stopEvent;
    std::thread m_thread;
};

} // namespace devhost::host
