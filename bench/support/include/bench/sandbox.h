#pragma once

#include "bench/logsandbox.h"

#include <optional>

namespace bench {

/// A folder of its own for log, store and agent, which the registry names as the agent's. There is no agent in
/// it, and the log does not rotate. At the end folder and registry are as before.
class Sandbox {
public:
    Sandbox();
    ~Sandbox();
    Sandbox(const Sandbox&) = delete;
    Sandbox& operator=(const Sandbox&) = delete;

    const std::filesystem::path& root() const { return m_folder.root(); }

private:
    LogSandbox m_folder;
    std::optional<std::filesystem::path> m_agentDirectory; ///< what the registry named before
};

} // namespace bench
