#pragma once

#include "agent/deployscript.h"
#include "agent/step.h"
#include "store/protocol/value.h"

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace devhost::agent {

/// One line that says what is wrong with a script.
class ScriptError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A value that a run writes to the store.
struct ScriptedValue {
    std::string key;
    store::Value value;
};

/// How a run ends after it has written its results.
enum class Ending { Exit, Hang, Crash };

/// What a start is for, by the command on its command line.
enum class Task {
    Ordinary, ///< no command, or any other
    Continue, ///< "continue", at the first boot after a deployment that waits for one
    Complete, ///< "complete", when the plug-in has seen that deployment finished
    Queue,    ///< "queue", when the scheduled task's hour has come
};

/// The name of a task's list of runs in a script.
std::string_view listOf(Task task);

/// What one start of the agent does, in this order: say `output`, pass `gate` and wait, do what its command asks for,
/// write `values`, take `steps`, end.
struct AgentRun {
    std::chrono::milliseconds duration{0}; ///< when the gate waits for nothing
    Gate gate;
    std::string output;         ///< text for standard output
    bool idle = false;          ///< the command is left undone
    bool isTestMachine = false; ///< whose Windows may be changed
    std::vector<ScriptedValue> values;
    std::vector<Step> steps;            ///< the deployment among them when there is one
    std::optional<DeployScript> deploy; ///< always there when a step says so
    Ending ending = Ending::Exit;
    int exitCode = 0;
};

/// A list of runs for each task: its n-th start takes the n-th entry, and the last entry repeats. Immutable.
class AgentScript {
public:
    /// Successful scans that find two updates, and deployments of what the queue asks for.
    AgentScript();
    /// Throws ScriptError.
    static AgentScript parse(std::string_view text);
    /// Throws ScriptError, also when there is no such file.
    static AgentScript load(const std::filesystem::path& file);

    /// `start` counts the task's starts from 0. A task without a list has one run that does nothing else.
    const AgentRun& runOf(std::size_t start, Task task = Task::Ordinary) const;

private:
    using Runs = std::map<Task, std::vector<AgentRun>>;

    explicit AgentScript(Runs runs) : m_runs(std::move(runs)) {}

    Runs m_runs; ///< a list that is not empty for each task
};

} // namespace devhost::agent
