#pragma once

#include "agent/agentscript.h"

#include <functional>
#include <memory>

namespace vx::settings {
class Settings;
}

namespace devhost::agent {

/// Carries out one scripted run on the calling thread, says what it does on standard output and blocks
/// as long as the script says.
class AgentRunner {
public:
    using SettingsMaker = std::function<std::shared_ptr<vx::settings::Settings>()>;

    /// `makeSettings` is called only for a run that writes something.
    explicit AgentRunner(SettingsMaker makeSettings) : m_makeSettings(std::move(makeSettings)) {}

    /// Everything up to the end: output, events, waiting, results. Throws what the settings and the
    /// system throw.
    void perform(const AgentRun& run) const;
    /// Ends as the run says: gives its exit code, blocks for ever, or does not survive.
    static int end(const AgentRun& run);

private:
    void write(const std::vector<ScriptedValue>& values) const;

    SettingsMaker m_makeSettings;
};

} // namespace devhost::agent
