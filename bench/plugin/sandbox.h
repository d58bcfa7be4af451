#pragma once

#include "bench/datafolder.h"

#include <optional>

/// A folder of its own for log, store and agent, which the registry names as the agent's. There is no agent in
/// it. At the end folder and registry are as before.
class Sandbox {
public:
    Sandbox();
    ~Sandbox();
    Sandbox(const Sandbox&) = delete;
    Sandbox& operator=(const Sandbox&) = delete;

    const std::filesystem::path& root() const { return m_folder.path(); }

private:
    bench::DataFolder m_folder;
    std::optional<std::filesystem::path> m_agentDirectory; ///< what the registry named before
};
