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

class RunJournal;

/// Carries out one scripted run on the calling thread, says what it does on standard output and in the log, and
/// blocks as long as the script says.
class AgentRunner {
public:
    /// `factory` is asked for the store only by a run that needs it. Both outlive this object.
    AgentRunner(vx::tarn::common::CommonFactory& factory, const RunJournal& journal)
        : m_factory(factory), m_journal(journal)
    {}

    /// Everything up to the end: output, events, waiting, the task, results, steps. Throws what the settings, the
    /// storage and the system throw.
    /// `severity` is what the task Queue puts into the queue.
    void perform(const AgentRun& run, Task task, const std::string& severity);
    /// Ends as the run says: gives its exit code, blocks for ever, or does not survive.
    static int end(const AgentRun& run);

private:
    std::shared_ptr<vx::settings::Settings> settings();
    void performTask(Task task, const std::string& severity);
    void queue(const std::string& severity);
    void write(const std::vector<ScriptedValue>& values);
    void takeSteps(const AgentRun& run);
    void deploy(const DeployScript& script);

    vx::tarn::common::CommonFactory& m_factory;
    const RunJournal& m_journal;
    std::shared_ptr<vx::settings::Settings> m_settings; ///< empty until needed
};

} // namespace devhost::agent
