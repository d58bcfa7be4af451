#include "qrlhosterplugin.h"

#include "vxtl/exception.h"

#include <mutex>
#include <shared_mutex>

namespace vx::qrl {

namespace {

constexpr std::uint32_t stateStopped = 0;
constexpr std::uint32_t stateStarted = 1;

constexpr bool isOldestLayout(std::uint32_t size)
{
    return size == 0 || size == 24;
}

} // namespace

QrlHosterPlugin::QrlHosterPlugin(
    const char* pluginName, hosterAPI* hosterAPI, pluginAPI* pluginAPI, const Callbacks& callbacks)
    : m_pluginName(pluginName), m_hosterAPI(hosterAPI)
{
    VX_LOG_VALUES(pluginName, hosterAPI, pluginAPI);
    if (!pluginAPI)
        VX_THROW_AS(BaseException, L"vx::qrl::`anonymous-namespace'::QrlHosterPlugin::QrlHosterPlugin",
            L"Invalid pointer to pluginAPI structure");
    fillRecord(*pluginAPI, callbacks);
}

void QrlHosterPlugin::fillRecord(pluginAPI& record, const Callbacks& callbacks)
{
    record.pluginContextData = this;
    record.pluginInitialize = callbacks.initialize;
    record.pluginMain = callbacks.main;
    record.pluginStop = callbacks.stop;
    if (isOldestLayout(record.size))
        record.onResumeFromLowPowerMode = callbacks.onResumeFromLowPowerMode;
    if (record.size >= 32) {
        record.reservedCallback = nullptr;
        record.onPowerEvent = callbacks.onPowerEvent;
        // A host that knows power events would otherwise tell of each resume twice.
        record.onResumeFromLowPowerMode = nullptr;
    }
    if (record.size >= 36)
        record.onSessionChangeEvent = callbacks.onSessionChangeEvent;
}

bool QrlHosterPlugin::main(const PluginFactory& factory, const std::atomic<bool>& stopRequested)
{
    if (!factory) {
        logging::LogStream(logging::Level::Error) << "Plugin factory is not registered";
        return false;
    }
    auto plugin = m_plugin;
    if (!plugin) {
        plugin = factory();
        const std::lock_guard lock(m_pluginMutex);
        m_plugin = plugin;
    }
    // A stop that found no plug-in has raised its flag before it took the mutex, so it is seen here.
    if (!stopRequested)
        plugin->run();
    return true;
}

void QrlHosterPlugin::release()
{
    std::shared_ptr<PluginImpl> last;
    const std::lock_guard lock(m_pluginMutex);
    last.swap(m_plugin);
}

template <typename Call>
void QrlHosterPlugin::forward(Call call)
{
    const std::shared_lock lock(m_pluginMutex);
    if (m_plugin)
        call(*m_plugin);
}

void QrlHosterPlugin::stop()
{
    forward([](PluginImpl& plugin) { plugin.stop(); });
}

void QrlHosterPlugin::onPowerEvent(std::uint32_t type, std::uint32_t data)
{
    forward([=](PluginImpl& plugin) { plugin.onPowerEvent(type, data); });
}

void QrlHosterPlugin::onSessionChangeEvent(std::uint32_t type, std::uint32_t data)
{
    forward([=](PluginImpl& plugin) { plugin.onSessionChangeEvent(type, data); });
}

void QrlHosterPlugin::reportPluginStarted()
{
    report(stateStarted);
}

void QrlHosterPlugin::reportPluginStopped()
{
    report(stateStopped);
}

void QrlHosterPlugin::report(std::uint32_t state)
{
    if (m_hosterAPI && m_hosterAPI->reportPluginState)
        m_hosterAPI->reportPluginState(m_pluginName.c_str(), state);
}

} // namespace vx::qrl
