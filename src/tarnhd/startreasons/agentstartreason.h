#pragma once

#include <cstdint>

namespace vx::tarn {

/// Whose request an agent start answers.
enum class AgentStartReason : std::int32_t {
    None = 0,             ///< the agent starts on its own account
    RemoteScan = 1,       ///< a remote scan request is open
    RemoteDeployment = 2, ///< a remote installation request is open
};

} // namespace vx::tarn
