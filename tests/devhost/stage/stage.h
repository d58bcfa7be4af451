#pragma once

#include "ipc/signal.h"
#include "keys/keycatalogue.h"
#include "store/client/client.h"
#include "store/server/server.h"
#include "support/record.h"
#include "vxtl/handle.h"
#include "vxtl/str.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

namespace support {

using devhost::host::keyOf;
using devhost::store::Value;
using nlohmann::json;
using Texts = std::vector<std::string>;

inline const auto& settings = devhost::host::keys::settings;
inline const auto& status = devhost::host::keys::status;

/// A program started by a test, with its output collected in files. Killed at destruction, as by a crash, if it still
/// runs.
class ChildProcess {
public:
    /// `program` is a full path, or a name in the programs' folder. `input` is borrowed, a handle to be inherited.
    ChildProcess(const std::filesystem::path& program, const std::wstring& arguments,
        const std::filesystem::path& outputFolder, void* input = nullptr);
    ~ChildProcess();
    ChildProcess(ChildProcess&& other) = default;

    /// The exit code; nothing when it has not ended within the time.
    std::optional<unsigned long> wait(std::chrono::milliseconds timeout = std::chrono::seconds(60)) const;
    std::string output() const;
    std::string errors() const;
    /// The system's number of the process.
    unsigned long id() const;

private:
    std::filesystem::path m_outputFile;
    std::filesystem::path m_errorFile;
    std::unique_ptr<vx::KernelHandle> m_process;
};

/// The folder of the running test program, where all programs of the build are.
std::filesystem::path programFolder();

/// A new empty folder, removed at destruction; what a killed run left of the same name goes first.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

std::string readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, const std::string& text);

/// Two named events by which a test holds a scripted agent: the agent sets `started` and goes on once `release` is set.
class Gate {
public:
    explicit Gate(const std::string& name);
    ~Gate() { release(); }

    /// The script's members for a run that is held.
    json run() const { return {{"startedEvent", m_name + "-started"}, {"waitForEvent", m_name + "-release"}}; }
    bool waitUntilStarted() const { return m_started.wait(30'000); }
    void release() const { m_release.set(); }

private:
    const std::string m_name;
    const devhost::ipc::Signal m_started{vx::str::fromUtf8(m_name + "-started")};
    const devhost::ipc::Signal m_release{vx::str::fromUtf8(m_name + "-release")};
};

/// A folder and an instance of a test's own, which this process and its children work with. The store's server is
/// made, not started; the agent is not there yet.
class StageTest : public testing::Test {
protected:
    StageTest();

    ChildProcess tarnhost(const std::string& arguments) const
    {
        return {"tarnhost.exe", vx::str::fromUtf8(arguments), folder.path()};
    }

    /// Puts it there with the store's client library beside it, as where it is installed.
    void installAgent(const std::filesystem::path& where) const;
    void installAgent() const { installAgent(agentFolder); }
    /// The agent's ordinary runs in order, the last one repeats; `lists`: those of other starts.
    void script(const std::vector<json>& runs, json lists = json::object()) const;

    /// By the row's type. Null for a value that is missing.
    void put(const vx::tarn::KeyRow& row, const json& value);
    json get(const vx::tarn::KeyRow& row);
    /// The descriptors in the deployment queue, and a queue of such.
    Texts queue();
    void putQueue(const Texts& descriptors);

    /// Fails the test when the condition does not come within half a minute; what it looks at changes with files in the
    /// folder.
    void waitFor(
        const std::filesystem::path& changing, const std::string& what, const std::function<bool()>& condition);

    const TemporaryFolder folder;
    const std::wstring instance = folder.path().filename().wstring();
    const std::filesystem::path agentFolder = folder.path() / "agent";
    const std::filesystem::path storeFile = folder.path() / "store" / "store.json";
    Record heard; ///< by callbacks, so it outlives the clients
    devhost::store::Server server{storeFile.wstring(), instance};
    devhost::store::Client client{instance};
};

} // namespace support
