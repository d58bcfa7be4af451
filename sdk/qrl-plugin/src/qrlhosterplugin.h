#pragma once

#include "qrl-plugin/hostrecords.h"
#include "qrl-plugin/pluginimpl.h"
#include "vxtl/lock.h"

#include <atomic>
#include <memory>
#include <string>

namespace vx::qrl {

/// The functions that go into the host's table.
struct Callbacks {
    PluginInitializeFunction initialize;
    PluginFunction main;
    PluginFunction stop;
    PluginEventFunction onPowerEvent;
    PluginEventFunction onSessionChangeEvent;
    PluginResumeFunction onResumeFromLowPowerMode;
};

/// The one object behind the host's table. main runs on the host's main-callback thread and builds the plug-in;
/// the other operations may come from other threads meanwhile, and do nothing while the plug-in is not built.
class QrlHosterPlugin {
public:
    /// Fills the host's record as far as its size allows. `hosterAPI` is borrowed for the object's life. Throws
    /// BaseException when `pluginAPI` is null.
    QrlHosterPlugin(const char* pluginName, hosterAPI* hosterAPI, pluginAPI* pluginAPI, const Callbacks& callbacks);
    QrlHosterPlugin(const QrlHosterPlugin&) = delete;
    QrlHosterPlugin& operator=(const QrlHosterPlugin&) = delete;

    /// Builds the plug-in and, unless a stop has been requested, blocks in its run. False without a factory.
    bool main(const PluginFactory& factory, const std::atomic<bool>& stopRequested);
    /// Destroys the plug-in on the calling thread, once the calls into it have returned.
    void release();
    void stop();
    void onPowerEvent(std::uint32_t type, std::uint32_t data);
    void onSessionChangeEvent(std::uint32_t type, std::uint32_t data);
    void reportPluginStarted();
    void reportPluginStopped();

private:
    void fillRecord(pluginAPI& record, const Callbacks& callbacks);
    void report(std::uint32_t state);
    template <typename Call>
    void forward(Call call);

    std::string m_pluginName;
    hosterAPI* m_hosterAPI;
    /// Written by main and release; shared by the calls from other threads, so that none of them is left holding
    /// the plug-in when main's thread is to destroy it.
    sync::SharedMutex m_pluginMutex;
    std::shared_ptr<PluginImpl> m_plugin; ///< guarded by m_pluginMutex
};

} // namespace vx::qrl
