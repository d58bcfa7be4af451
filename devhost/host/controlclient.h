#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace devhost::host {

/// Sends a request to the running host of an instance and gives its answer. Blocks for as long as the host
/// takes, at most two minutes. Throws CommandError: NotRunning when there is no host, otherwise with the
/// host's own line.
nlohmann::json callHost(const std::wstring& instance, const nlohmann::json& request);

} // namespace devhost::host
