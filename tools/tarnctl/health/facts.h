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
    std::string trouble;  ///< when there is no value
    bool isWrong = false; ///< the trouble is with what was read: it is missing, of another type, or malformed

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
};

/// The proxy of downloads.
struct ProxyFact {
    std::string text;  ///< for people, without a password; empty for none
    std::string fault; ///< why the configured text can't be used; empty for none
};

/// Automatic updates of Windows.
struct UpdatesFact {
    bool isPaused = false; ///< as a deployment leaves them until it resumes them
    bool isOff = false;    ///< the policy switches them off, whoever wanted that
};

/// Where the log is written, and how much of it.
struct LogPlace {
    enum class Access { Writable, Refused, Unknown };

    std::string path;
    bool exists = false;
    Access access = Access::Unknown; ///< for who asks, which counts for the plug-in if that is an administrator
    std::int32_t level = 4;          ///< as configured: 4 is info, 6 verbose
};

/// What the log tells.
struct LogFacts {
    std::size_t endsMissing = 0;           ///< lives of the plug-in without an end, but the last
    bool isLastOpen = false;               ///< the last one has no end
    std::size_t unreadableLines = 0;       ///< lines that are no record
    std::size_t gaps = 0;                  ///< places where records are missing
    std::vector<std::int64_t> exitCodes;   ///< of the last agent starts, in their order
    std::optional<std::int64_t> scanAsked; ///< how many seconds ago the plug-in took up what is not acknowledged yet
    std::optional<std::int64_t> installationAsked;
    std::vector<std::string> leftOpen;      ///< requests that recovery has given up, as "remote scan 5"
    std::optional<std::int64_t> lastSignal; ///< how many seconds ago this life of the plug-in asked for a start
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

    Fact<std::string> agentProgram;                                 ///< its path, when the file is there
    Fact<std::vector<std::optional<std::int64_t>>> agentRunSeconds; ///< of each agent that runs; empty when not told
    Fact<std::vector<std::uint32_t>> pluginProcesses;               ///< ids of those that have it loaded
    Fact<bool> patchStorage;                                        ///< whether it holds a deployment
    Fact<ScheduledTask> task;
    Fact<StopRequest> stopRequest;
    Fact<std::optional<std::int64_t>> rebootDue; ///< seconds since the Unix epoch; empty: no reboot is forced
    Fact<UpdatesFact> updates;
    Fact<LogPlace> logPlace;
    Fact<LogFacts> log;
};

} // namespace tarnctl::health
