#pragma once

#include "childprocess.h"
#include "host/logreader.h"
#include "keys/keycatalogue.h"
#include "store/client/client.h"
#include "vxtl/handle.h"
#include "vxtl/str.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <windows.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace rig {

using devhost::host::keyOf;
using devhost::store::Value;

inline const auto& settings = devhost::host::keys::settings;
inline const auto& status = devhost::host::keys::status;
inline const std::string enabled = keyOf(settings.enabled);
inline const std::string scanStart = keyOf(settings.remoteOperations.scanForUpdates.start);
inline const std::string scanAck = keyOf(settings.remoteOperations.scanForUpdates.ack);
inline const std::string missingUpdates = keyOf(status.scanning.lastScanning.missingUpdates);
inline const std::string lastScan = keyOf(status.scanning.lastScanning.timestamp);
/// A line of the log; the code follows.
inline const std::string agentEnd = "Process finished with return code: ";

/// Two named events by which a test holds a scripted agent run: the agent sets `started` and goes on
/// once `release` is set.
class Gate {
public:
    explicit Gate(const std::string& name) : m_name(name + "-" + std::to_string(GetCurrentProcessId())) {}
    ~Gate() { release(); }

    /// The script's members for a run that is held.
    nlohmann::json run() const
    {
        return {{"startedEvent", m_name + "-started"}, {"waitForEvent", m_name + "-release"}};
    }
    bool waitUntilStarted() const { return WaitForSingleObject(m_started.get(), 30'000) == WAIT_OBJECT_0; }
    void release() const { SetEvent(m_release.get()); }

private:
    const std::string m_name;
    const vx::KernelHandle m_started{CreateEventA(nullptr, TRUE, FALSE, (m_name + "-started").c_str())};
    const vx::KernelHandle m_release{CreateEventA(nullptr, TRUE, FALSE, (m_name + "-release").c_str())};
};

/// One system in a folder and an instance of its own: store, host with the plug-in, agent folder and log. Every
/// wait ends with what is waited for or fails the test after half a minute. A host that still runs at the end of
/// the test is stopped and must end well.
class SystemTest : public testing::Test {
protected:
    SystemTest();
    void TearDown() override;

    /// Starts "tarnhost run"; with waiting, until the plug-in processes and the scan it begins with is done.
    enum class Wait { ForFirstScan, ForProcessing, No };
    void startHost(Wait wait = Wait::ForFirstScan, const std::string& options = {});
    void startStoreAlone();
    void killStore() { store.reset(); }
    /// "tarnhost stop"; the host's exit code.
    unsigned long stopHost();
    /// Runs a tarnhost command of this instance to its end; gives its exit code.
    unsigned long command(const std::string& arguments);

    /// The agent's runs in order; the last one repeats. The first one answers the scan at the plug-in's start.
    void script(const std::vector<nlohmann::json>& runs);
    void installAgent(const std::filesystem::path& where);
    void installAgent() { installAgent(agentFolder); }
    void removeAgent() { std::filesystem::remove(agentFolder / "tarnag.exe"); }
    std::size_t agentStarts() const;
    void waitForAgentEnds(std::size_t count) { waitForLog(agentEnd, count); }

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

    const support::TemporaryFolder folder;
    const std::filesystem::path agentFolder = folder.path() / "agent";
    const std::string instance = folder.path().filename().string();
    devhost::store::Client client{vx::str::fromUtf8(instance)};
    std::optional<support::ChildProcess> host;
    std::optional<support::ChildProcess> store;

private:
    support::ChildProcess start(const std::string& arguments, const std::string& outputName);
    const std::vector<std::string>& log();

    std::optional<devhost::host::LogReader> m_log;
    std::vector<std::string> m_lines;
    bool m_hostStopped = false;
    unsigned m_commands = 0;
};

} // namespace rig
