#pragma once

#include "qrlhosterplugin.h"
#include "vxtl/lock.h"
#include "vxtl/modulelife.h"

#include <atomic>
#include <memory>

namespace vx::qrl {

/// What stands between the host's flat table and the plug-in object: holds the factory and the instance, checks
/// every pointer that comes back from the host and turns failures into log lines and codes. There is one per
/// process. The host gives up a thread to main; everything else may come from any thread meanwhile.
///
/// A stop holds for as long as the module stays loaded by its host alone. In a module that something else has kept in
/// memory each instance begins as in a fresh one: no stop from before it counts, nor one for another record.
class PluginFrame {
public:
    using IsModuleKept = bool (*)() noexcept;

    /// `callbacks` go into the host's records and are expected to lead back here.
    explicit PluginFrame(const Callbacks& callbacks, IsModuleKept isModuleKept = modulelife::isKept)
        : m_callbacks(callbacks), m_isModuleKept(isModuleKept)
    {}
    PluginFrame(const PluginFrame&) = delete;
    PluginFrame& operator=(const PluginFrame&) = delete;

    /// Before any other call. Throws BaseException on a second registration.
    void registerPluginFactory(PluginFactory factory);

    /// 0: the instance was made; 1: there is one already, or making it failed.
    std::uint32_t initialize(const char* pluginName, hosterAPI* hosterAPI, pluginAPI* pluginAPI) noexcept;
    /// Builds, runs and destroys the plug-in. 0: ran and ended; 1: an exception was caught; 2: no factory.
    std::uint32_t main(pluginAPI* pluginAPI) noexcept;
    /// 0: done; 1: an exception was caught. Once called, no plug-in runs again while the module stays loaded.
    std::uint32_t stop(pluginAPI* pluginAPI) noexcept;
    void onPowerEvent(pluginAPI* pluginAPI, std::uint32_t type, std::uint32_t data) noexcept;
    void onSessionChangeEvent(pluginAPI* pluginAPI, std::uint32_t type, std::uint32_t data) noexcept;
    void onResumeFromLowPowerMode(pluginAPI* pluginAPI) noexcept;

private:
    /// The instance, kept alive for the caller. Throws BaseException when there is none or the record is not its.
    std::shared_ptr<QrlHosterPlugin> getPlugin(const pluginAPI* pluginAPI);
    void reportPluginStopped(QrlHosterPlugin& plugin, pluginAPI& pluginAPI) noexcept;
    void requestStop(const pluginAPI* pluginAPI) noexcept;
    bool isRecordOfInstance(const pluginAPI* pluginAPI) const;

    const Callbacks m_callbacks;
    const IsModuleKept m_isModuleKept;
    PluginFactory m_factory;
    sync::Mutex m_instanceMutex;                 ///< never held across a call into the plug-in
    std::shared_ptr<QrlHosterPlugin> m_instance; ///< guarded by m_instanceMutex, as is the record's context
    std::atomic<bool> m_stopRequested{false};    ///< written under m_instanceMutex
};

} // namespace vx::qrl
