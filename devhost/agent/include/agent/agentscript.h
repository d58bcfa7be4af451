#pragma once

#include "store/value.h"

#include <chrono>
#include <cstddef>
#include <filesystem>
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
    store::Type type;
    std::string json; ///< serialised; of the JSON type that goes with `type`
};

/// How a run ends after it has written its results.
enum class Ending { Exit, Hang, Crash };

/// What one start of the agent does, in this order: say `output`, signal `startedEvent`, wait, write
/// `values`, end.
struct AgentRun {
    std::chrono::milliseconds duration{0};
    std::string waitForEvent; ///< a named event to wait for instead of `duration`; empty for none
    std::string startedEvent; ///< a named event that is set once the run is under way; empty for none
    std::string output;       ///< text for standard output
    std::vector<ScriptedValue> values;
    Ending ending = Ending::Exit;
    int exitCode = 0;
};

/// The list of runs: the n-th start takes the n-th entry, and the last entry repeats. Immutable.
class AgentScript {
public:
    /// A successful scan that finds two updates.
    AgentScript();
    /// Throws ScriptError.
    static AgentScript parse(std::string_view text);
    /// Throws ScriptError, also when there is no such file.
    static AgentScript load(const std::filesystem::path& file);

    /// `start` counts from 0.
    const AgentRun& runOf(std::size_t start) const;

private:
    explicit AgentScript(std::vector<AgentRun> runs) : m_runs(std::move(runs)) {}

    std::vector<AgentRun> m_runs; ///< never empty
};

} // namespace devhost::agent
