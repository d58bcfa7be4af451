#pragma once

#include "agent/agentscript.h"

#include <filesystem>
#include <memory>
#include <optional>

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
    /// `factory` is asked for the store only by a run that needs it, and has no settings so far. `factory` and
    /// `journal` outlive this object. `folder`: the agent's, where relative paths of a script begin.
    AgentRunner(vx::tarn::common::CommonFactory& factory, const RunJournal& journal, std::filesystem::path folder)
        : m_factory(factory), m_journal(journal), m_folder(std::move(folder))
    {}

    /// Everything up to the end: output, events, waiting, the task, results, steps. Throws what the settings, the
    /// storage, the host's libraries and the system throw.
    /// Gives the exit code of a step that failed, which ends the run; nothing when the run is to end as it says.
    /// `severity` is what the task Queue puts into the queue.
    std::optional<int> perform(const AgentRun& run, Task task, const std::string& severity);
    /// Ends as the run says: gives its exit code, blocks for ever, or does not survive.
    static int end(const AgentRun& run);

private:
    std::shared_ptr<vx::settings::Settings> settings();
    void performTask(Task task, const std::string& severity);
    void queue(const std::string& severity);
    void write(const std::vector<ScriptedValue>& values);
    std::optional<int> takeSteps(const AgentRun& run);
    void deploy(const DeployScript& script);

    vx::tarn::common::CommonFactory& m_factory;
    const RunJournal& m_journal;
    const std::filesystem::path m_folder;
    std::shared_ptr<vx::settings::Settings> m_settings; ///< empty until needed
};

} // namespace devhost::agent
