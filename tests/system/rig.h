#pragma once

#include "childprocess.h"
#include "host/logreader.h"
#include "store/client.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace rig {

inline const std::string settings = "windows.tarnpatch.";
inline const std::string status = "status.windows.tarnpatch.";
inline const std::string enabled = settings + "enabled";
inline const std::string scanStart = settings + "remote_operations.scan_for_updates.start";
inline const std::string scanAck = settings + "remote_operations.scan_for_updates.ack";
inline const std::string missingUpdates = status + "scanning.last_scanning.missing_updates";
inline const std::string lastScan = status + "scanning.last_scanning.timestamp";

/// Two named events by which a test holds a scripted agent run: the agent sets `started` and goes on
/// once `release` is set.
class Gate {
public:
    explicit Gate(const std::string& name);
    ~Gate();
    Gate(const Gate&) = delete;
    Gate& operator=(const Gate&) = delete;

    /// The script's members for a run that is held.
    nlohmann::json run(nlohmann::json rest = nlohmann::json::object()) const;
    bool waitUntilStarted() const;
    void release() const;

private:
    std::string m_name;
    void* m_started;
    void* m_release;
};

/// One system in a folder and an instance of its own: store, host with the plug-in, agent folder and log. Every
/// wait ends with what is waited for or fails the test after half a minute.
class SystemTest : public testing::Test {
protected:
    SystemTest();
    ~SystemTest() override;

    /// Starts "tarnhost run"; with waiting, until the plug-in processes and the scan it begins with is done.
    enum class Wait { ForFirstScan, ForProcessing, No };
    void startHost(Wait wait = Wait::ForFirstScan, const std::string& options = {});
    void startStoreAlone();
    void killStore();
    /// "tarnhost stop"; the host's exit code.
    unsigned long stopHost();
    /// Runs a tarnhost command of this instance to its end; gives its exit code.
    unsigned long command(const std::string& arguments);

    /// The agent's runs in order; the last one repeats. The first one answers the scan at the plug-in's start.
    void script(const std::vector<nlohmann::json>& runs);
    void installAgent();
    void removeAgent();
    std::size_t agentStarts() const;
    void waitForAgentEnds(std::size_t count);

    void set(const std::string& key, const devhost::store::Value& value) { client.set(key, value); }
    void setNumber(const std::string& key, std::int64_t value);
    std::int64_t number(const std::string& key, std::int64_t fallback = 0);
    void waitForNumber(const std::string& key, std::int64_t value);
    void waitForFlag(const std::string& key, bool value);
    /// Until the condition holds, looked at with each change of the key; without a change for a second `nudge` is
    /// called.
    using Condition = std::function<bool()>;
    void waitForValue(const std::string& key, const std::string& what, const Condition& condition,
        const std::function<void()>& nudge = {});
    /// Writes start and waits for the same ack.
    void scan(std::int64_t value);

    /// Waits until that many lines of the log hold the text.
    void waitForLog(const std::string& text, std::size_t count = 1);
    std::size_t logCount(const std::string& text);
    /// The last line that holds the text, from the text on; empty when there is none.
    std::string lastLog(const std::string& text);
    bool hostRuns() const;

    support::TemporaryFolder folder;
    const std::string instance;
    devhost::store::Client client;
    std::unique_ptr<support::ChildProcess> host;
    std::unique_ptr<support::ChildProcess> store;

private:
    void waitFor(const std::filesystem::path& changing, const std::string& what, const Condition& condition);
    std::unique_ptr<support::ChildProcess> start(const std::string& arguments, const std::string& outputName);
    const std::vector<std::string>& log();

    std::unique_ptr<devhost::host::LogReader> m_log;
    std::vector<std::string> m_lines;
    unsigned m_commands = 0;
};

} // namespace rig
