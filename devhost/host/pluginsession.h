#pragma once

#include "host/conduct.h"
#include "host/hostcallbacks.h"
#include "host/pluginloader.h"
#include "host/pluginrecord.h"
#include "ipc/signal.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <thread>

namespace devhost::host {

/// One life of a plug-in: loaded, initialised, its main callback running on a thread of its own, stopped,
/// unloaded at destruction. Operations may come from any thread once the constructor has returned.
class PluginSession {
public:
    /// Who is told what the plug-in does; called on the plug-in's threads.
    struct Listener {
        HostCallbacks::StateListener onState; ///< on the plug-in's thread
        std::function<void(std::uint32_t code)> onMainEnded;
    };

    /// Loads and initialises. `size` is one of PluginRecord::knownSizes. `conduct` is borrowed. Throws CommandError.
    PluginSession(const std::filesystem::path& library, std::string name, std::uint32_t size, Listener listener,
        const Conduct& conduct = goodConduct);
    /// A main callback that still runs is left running, with the library in memory.
    ~PluginSession();
    PluginSession(const PluginSession&) = delete;
    PluginSession& operator=(const PluginSession&) = delete;

    /// Gives the main callback its thread.
    void start();
    /// Calls the stop callback and gives its result; the main callback may take its time after that.
    std::uint32_t stop();
    /// The main callback's result; nothing when it has not ended within the time.
    std::optional<std::uint32_t> waitForEnd(std::chrono::milliseconds timeout);
    /// A resume from low power by the way that this size of record has. Throws CommandError when it has none.
    void resume();
    /// Throws CommandError when this size of record knows no session events.
    void sessionEvent(std::uint32_t type, std::uint32_t data);
    /// Whether the plug-in has kept to its part of the record.
    bool isRecordIntact() const { return m_record->isIntact(); }

private:
    /// The end of the main callback.
    struct MainEnd {
        ipc::Signal told;
        std::uint32_t code = 0; ///< written before `told` is set
    };

    void onReport(std::uint32_t state) const { m_conduct.onReport(m_record->get(), state); }

    const Conduct& m_conduct;
    std::string m_name;
    HostCallbacks m_callbacks;
    std::shared_ptr<PluginRecord> m_record; ///< shared with the main thread, which may outlive this object
    PluginLoader m_loader;
    std::function<void(std::uint32_t)> m_onMainEnded;
    std::thread m_main;
    std::shared_ptr<MainEnd> m_end; ///< shared with the main thread
};

} // namespace devhost::host
