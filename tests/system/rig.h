#pragma once

#include "logreading/logreader.h"
#include "stage.h"

namespace rig {

using namespace support;

inline const auto& scanStart = settings.remoteOperations.scanForUpdates.start;
inline const auto& scanAck = settings.remoteOperations.scanForUpdates.ack;
inline const auto& missingUpdates = status.scanning.lastScanning.missingUpdates;
inline const auto& lastScan = status.scanning.lastScanning.timestamp;
/// A line of the log; the code follows.
inline const std::string agentEnd = "Process finished with return code: ";

/// One system on the stage: store, host with the plug-in, agent and log. Every wait ends with what is waited for or
/// fails the test. A host that still runs at the end of the test is stopped and must end well.
class SystemTest : public StageTest {
protected:
    SystemTest();
    void TearDown() override;

    /// Starts "tarnhost run" and waits until the plug-in processes, and until the scan it begins with is done.
    enum class Wait { ForFirstScan, ForProcessing };
    void startHost(Wait wait = Wait::ForFirstScan, const std::string& options = {});
    void startStoreAlone();
    void killStore() { store.reset(); }
    /// "tarnhost stop"; the host's exit code.
    unsigned long stopHost();
    /// Runs a tarnhost command of this instance to its end; gives its exit code.
    unsigned long command(const std::string& arguments);

    std::size_t agentStarts() const;
    void waitForAgentEnds(std::size_t count) { waitForLog(agentEnd, count); }
    void waitForValue(const vx::tarn::KeyRow& row, const json& value);
    /// Writes start and waits for the same ack.
    void scan(std::int64_t value);

    /// Waits until that many lines of the log hold the text.
    void waitForLog(const std::string& text, std::size_t count = 1);
    std::size_t logCount(const std::string& text);
    /// The last line that holds the text, from the text on; empty when there is none.
    std::string lastLog(const std::string& text);
    /// Its lines so far.
    const std::vector<std::string>& log();

    std::optional<ChildProcess> host;
    std::optional<ChildProcess> store;

private:
    std::optional<logreading::LogReader> m_log;
    std::vector<std::string> m_lines;
    bool m_hostStopped = false;
};

} // namespace rig
