#pragma once

#include "childprocess.h"
#include "host/logreader.h"
#include "store/client.h"
#include "vxtl/handle.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace rig {

using devhost::store::Value;

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
    ~Gate() { release(); }

    /// The script's members for a run that is held.
    nlohmann::json run() const;
    bool waitUntilStarted() const;
    void release() const;

private:
    const std::string m_name;
    const vx::KernelHandle m_started;
    const vx::KernelHandle m_release;
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

    void setNumber(const std::string& key, std::int64_t value) { client.set(key, Value::fromInt64(value)); }
    /// 0 for a missing one.
    std::int64_t number(const std::string& key);
    void waitForValue(const std::string& key, const Value& value);
    /// What is waited for comes with a change in the folder.
    void waitFor(const std::filesystem::path& folder, const std::string& what, const std::function<bool()>& condition);
    /// Writes start and waits for the same ack.
    void scan(std::int64_t value);

    /// Waits until that many lines of the log hold the text.
    void waitForLog(const std::string& text, std::size_t count = 1);
    std::size_t logCount(const std::string& text);
    /// The last line that holds the text, from the text on; empty when there is none.
    std::string lastLog(const std::string& text);

    support::TemporaryFolder folder;
    const std::string instance;
    devhost::store::Client client;
    std::optional<support::ChildProcess> host;
    std::optional<support::ChildProcess> store;

private:
    support::ChildProcess start(const std::string& arguments, const std::string& outputName);
    const std::vector<std::string>& log();

    std::optional<devhost::host::LogReader> m_log;
    std::vector<std::string> m_lines;
    unsigned m_commands = 0;
};

} // namespace rig
