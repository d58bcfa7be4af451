#pragma once

#include "logreading/record.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace logreading {

/// Who wanted the agent to start, as far as the log tells.
enum class Cause : std::uint8_t {
    Unknown, ///< another process, or a thread whose lines tell nothing
    RemoteScan,
    RemoteInstallation,
    StoreChange, ///< an item in the deployment queue, or a changed rule of what to scan for
    Period,      ///< the last start is older than the longest time between two
    StartUp,
    WindowsUpdate,
    FeatureOn,
    FinishedDeployment, ///< a deployment that waited for a reboot is over
};

/// For people: "remote scan request".
std::string_view nameOf(Cause cause);

/// One signal to start the agent.
struct Ask {
    Moment time = 0;
    Cause cause = Cause::Unknown;
    std::string detail; ///< what the log adds: the updates, the period; may be empty
};

/// How a start came out.
enum class Outcome : std::uint8_t {
    Open,      ///< still running, or the log ends
    Finished,  ///< exit code 0
    Failed,    ///< another exit code, or no process
    Busy,      ///< another agent was at work at every try
    Abandoned, ///< the plug-in stopped or died first; the agent goes on alone
};

std::string_view nameOf(Outcome outcome);

/// The start event, and what the plug-in did about it. Signals that came while an agent ran are one start.
struct AgentStart {
    std::uint16_t process = 0;
    std::uint16_t thread = 0;
    Moment begin = 0;              ///< when the event was taken
    Moment end = 0;                ///< of the last line about it
    std::optional<Moment> started; ///< the process of the last try
    std::vector<Ask> asks;         ///< since the start before; empty when the log begins too late
    Cause serves = Cause::Unknown; ///< the kind of remote request that it answers, if any
    std::string arguments;
    unsigned tries = 0;
    std::optional<std::int64_t> exitCode;
    std::optional<std::int64_t> acknowledged; ///< the number of the remote request
    Outcome outcome = Outcome::Open;
};

/// One life of the plug-in in a host.
struct PluginRun {
    std::uint16_t process = 0;
    Moment begin = 0;                 ///< the banner
    Moment last = 0;                  ///< its last line so far
    bool hasBanner = false;           ///< it begins with one, so it has one at its end, too
    std::optional<Moment> serving;    ///< when it had begun to watch the store
    std::optional<Moment> lastSignal; ///< to start the agent
    std::optional<Moment> end;        ///< the closing banner
};

/// A step on the way to a reboot of the machine.
struct RebootStep {
    Moment time = 0;
    std::string text; ///< the log's
};

/// Reads records in their order and understands what the plug-in did. Grows with the number of starts, not of lines.
/// One thread.
class Story {
public:
    void take(const Record& record);

    const std::vector<PluginRun>& runs() const { return m_runs; }
    const std::vector<AgentStart>& starts() const { return m_starts; }
    const std::vector<RebootStep>& rebootSteps() const { return m_rebootSteps; }
    /// When the plug-in took up the remote request of this kind that no start has acknowledged yet; empty when the log
    /// tells of none.
    std::optional<Moment> openSince(Cause kind) const;

private:
    using Thread = std::uint32_t;

    void takeRun(const Record& record);
    void beginRun(const Record& record, bool hasBanner);
    void forgetLives();
    void takeAsk(const Record& record, Thread thread);
    void takeStart(const Record& record, Thread thread);
    void takeReboot(const Record& record);

    std::vector<PluginRun> m_runs;
    std::vector<AgentStart> m_starts;
    std::vector<RebootStep> m_rebootSteps;
    std::map<std::uint16_t, std::size_t> m_runOfProcess;
    std::size_t m_latestRun = 0; ///< that of the last record
    std::map<Thread, std::size_t> m_startOfThread;
    std::map<Thread, Ask> m_reasonOfThread; ///< what a thread has said that leads to a signal
    std::set<std::uint16_t> m_switchedOn;   ///< processes whose feature was switched on, without a signal for it yet
    std::vector<Ask> m_asks;                ///< not taken up by a start yet
};

} // namespace logreading
