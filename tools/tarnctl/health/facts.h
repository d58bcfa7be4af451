#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarnctl::health {

/// What was read, or why it could not be.
template <typename T>
struct Fact {
    std::optional<T> value;
    std::string trouble; ///< when there is no value

    bool isKnown() const { return value.has_value(); }
    const T& operator*() const { return *value; }
    const T* operator->() const { return &*value; }
};

/// A remote request: open while the two differ.
struct Request {
    std::int64_t start = 0;
    std::int64_t ack = 0;

    bool isOpen() const { return start != ack; }
};

/// A wait for a deployment to finish after a reboot.
struct CompletionWait {
    bool wait = false;
    std::int64_t since = 0; ///< seconds since the Unix epoch
    std::int64_t minutes = 0;
};

/// What the settings ask of the scheduled task, and what stands in the Task Scheduler.
struct ScheduledTask {
    bool wanted = false;
    bool exists = false;
    std::string difference; ///< between the two, for people; empty for none
};

/// The service stopper's request.
struct StopRequest {
    bool isThere = false;
    bool serviceRuns = false;
    std::optional<std::int64_t> rebootDue; ///< seconds since the Unix epoch; empty: no reboot is forced
};

/// The proxy of downloads.
struct ProxyFact {
    std::string text;  ///< for people, without a password; empty for none
    std::string fault; ///< why the configured text can't be used; empty for none
};

/// Automatic updates, when the agent has paused them.
struct PausedUpdates {
    bool isSaved = false; ///< a state to go back to is kept
    bool isOff = false;   ///< the policy switches them off
};

struct LogFacts {
    std::string path;
    bool isWritable = false;
    std::int32_t level = 4;              ///< as configured: 4 is info, 6 verbose
    std::size_t endsMissing = 0;         ///< lives of the plug-in without an end, but the last
    std::size_t unreadableLines = 0;     ///< lines that are no record
    std::vector<std::int64_t> exitCodes; ///< of the last agent starts, in their order
    std::vector<std::string> leftOpen;   ///< the requests that recovery has given up, as "remote scan 5"
};

/// Everything that the checks look at. Gathered at one time, without a trace on the machine.
struct Facts {
    std::int64_t now = 0; ///< seconds since the Unix epoch

    std::string storeTrouble;       ///< why the store can't be reached; empty when it can
    Fact<std::int64_t> profileTime; ///< seconds since the Unix epoch, 0 while there is no profile
    Fact<bool> enabledWanted;
    Fact<bool> enabledOn;
    Fact<Request> scan;
    Fact<Request> installation;
    Fact<bool> recovery;      ///< whether it is switched on
    Fact<std::size_t> queued; ///< a malformed queue is trouble
    Fact<CompletionWait> completion;
    Fact<bool> deploymentInProgress;
    Fact<std::int64_t> lastScan; ///< seconds since the Unix epoch, -1 for never
    Fact<std::int64_t> scanPeriodHours;
    Fact<std::size_t> missingUpdates;
    Fact<std::size_t> installationLog;
    Fact<std::size_t> publishedPatches;
    Fact<ProxyFact> proxy;

    Fact<std::string> agentProgram;                  ///< its path, when the file is there
    Fact<std::vector<std::int64_t>> agentRunSeconds; ///< of each agent that runs
    Fact<std::size_t> pluginProcesses;
    Fact<bool> patchStorage; ///< whether it holds a deployment
    Fact<ScheduledTask> task;
    Fact<StopRequest> stopRequest;
    Fact<PausedUpdates> updates;
    Fact<LogFacts> log;
};

} // namespace tarnctl::health
