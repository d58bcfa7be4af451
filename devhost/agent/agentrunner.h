#pragma once

#include "agent/agentscript.h"

#include <memory>

namespace vx::settings {
class Settings;
}
namespace vx::tarn::common {
class CommonFactory;
}

namespace devhost::agent {

/// Carries out one scripted run on the calling thread, says what it does on standard output and in the log, and
/// blocks as long as the script says.
class AgentRunner {
public:
    /// `factory` is asked for the store only by a run that needs it; it outlives this object.
    explicit AgentRunner(vx::tarn::common::CommonFactory& factory) : m_factory(factory) {}

    /// Everything up to the end: output, events, waiting, the task, results. Throws what the settings, the storage
    /// and the system throw.
    void perform(const AgentRun& run, Task task);
    /// Ends as the run says: gives its exit code, blocks for ever, or does not survive.
    static int end(const AgentRun& run);

private:
    std::shared_ptr<vx::settings::Settings> settings();
    void performTask(Task task);
    void write(const std::vector<ScriptedValue>& values);
    void deploy(const DeployScript& script);

    vx::tarn::common::CommonFactory& m_factory;
    std::shared_ptr<vx::settings::Settings> m_settings; ///< empty until needed
};

} // namespace devhost::agent
