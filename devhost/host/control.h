#pragma once

#include <functional>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace devhost::ipc {
class Listener;
}

// By this other programs of the same user, and administrators, drive a running host.
namespace devhost::host {

/// Takes a request and gives the answer; an exception becomes the answer {"error": text}. Called for one
/// request at a time, on threads of the server's own.
using ControlHandler = std::function<nlohmann::json(const nlohmann::json& request)>;

/// Serves from now on. Destroying what it gives waits for a handler that is running, so no handler may do it.
/// Throws CommandError.
std::unique_ptr<ipc::Listener> serveControl(const std::wstring& instance, ControlHandler handler);

/// Sends a request to the running host of an instance and gives its answer. Blocks for as long as the host
/// takes, at most two minutes. Throws CommandError: NotRunning when there is no host, otherwise with the
/// host's own line.
nlohmann::json callHost(const std::wstring& instance, const nlohmann::json& request);

} // namespace devhost::host
