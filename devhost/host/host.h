#pragma once

#include "host/context.h"
#include "host/exitcode.h"
#include "host/pluginsession.h"
#include "host/rebootcatch.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <nlohmann/json_fwd.hpp>
#include <optional>

namespace devhost::host {

/// What the command line says of a run.
struct HostOptions {
    std::filesystem::path plugin;
    std::optional<std::filesystem::path> store; ///< the file to serve; none when another process serves it
    std::optional<std::filesystem::path> agentDirectory;
    std::optional<std::chrono::seconds> runTime; ///< without it until the user stops it
    std::uint32_t recordSize = 36;
    bool provideProfile = true;
    const Conduct* conduct = &goodConduct;         ///< towards the plug-in
    Reboots reboots = Reboots::Hold;               ///< of those that the plug-in asks for
    std::chrono::milliseconds stopTimeout{30'000}; ///< how long a plug-in may take to end
};

/// The resident process in miniature: serves the store, runs the plug-in, shows what happens, and obeys other
/// host programs. run is called once, on the main thread.
class Host {
public:
    Host(const Context& context, HostOptions options);

    /// Blocks until the stop signal or the end of the run time. Failed when the plug-in's callbacks report
    /// a failure. Throws CommandError or StoreException when it cannot start.
    ExitCode run();

private:
    nlohmann::json handle(const nlohmann::json& request);
    nlohmann::json status();
    nlohmann::json restart();
    nlohmann::json reboot();
    RebootCatch::Answer onRebootRequest(const RebootRequest& request);
    void waitForStop();
    void playReboot();
    void prepare();
    void startPlugin();
    bool stopPlugin();
    PluginSession& session();
    void onState(const std::string& plugin, std::uint32_t state);
    void onMainEnded(std::uint32_t code);

    const Context& m_context;
    HostOptions m_options;
    std::mutex m_stateMutex;
    std::string m_state = "not loaded";       ///< guarded by m_stateMutex
    std::optional<std::uint32_t> m_result;    ///< guarded by m_stateMutex; of the last main callback
    unsigned m_rebootRequests = 0;            ///< guarded by m_stateMutex
    const ipc::Signal m_rebootWanted;         ///< for the main thread to play one
    bool m_failed = false;                    ///< of the thread that has m_session
    std::optional<RebootCatch> m_rebootCatch; ///< there before the plug-in and behind it
    /// Of the main thread before and after the control server lives, of the handler's turn meanwhile.
    std::optional<PluginSession> m_session;
};

/// Serves a store without a plug-in until the user stops it.
ExitCode serveStore(const Context& context, const std::filesystem::path& file);

} // namespace devhost::host
