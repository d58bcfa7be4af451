#include "pluginframe.h"

#include "vxtl/exception.h"
#include "vxtl/guarded.h"
#include "vxtl/scopeexit.h"

namespace vx::qrl {

namespace {

constexpr std::uint32_t done = 0;
constexpr std::uint32_t failed = 1;
constexpr std::uint32_t noFactory = 2;

/// PBT_APMRESUMEAUTOMATIC.
constexpr std::uint32_t resumeAutomatic = 18;

} // namespace

// Log and reports name the entries after the functions in the host's table.
#define ENTRY_NAME "vx::qrl::`anonymous-namespace'::QrlHosterPlugin::"
#define ENTRY_SCOPE(name) const logging::LogScope scope(ENTRY_NAME name)

void PluginFrame::registerPluginFactory(PluginFactory factory)
{
    if (m_factory)
        VX_THROW_AS(BaseException, L"vx::qrl::registerPluginFactory", L"Plugin factory is already registered.");
    m_factory = std::move(factory);
}

std::uint32_t PluginFrame::initialize(const char* pluginName, hosterAPI* hosterAPI, pluginAPI* pluginAPI) noexcept
{
    std::uint32_t result = failed;
    guarded([&] {
        const std::lock_guard lock(m_instanceMutex);
        if (m_instance)
            return;
        ENTRY_SCOPE("QrlHosterPlugin");
        m_instance = std::make_shared<QrlHosterPlugin>(pluginName, hosterAPI, pluginAPI, m_callbacks);
        // The host that unloaded and loaded the module counts on a fresh one.
        if (m_isModuleKept())
            m_stopRequested = false;
        result = done;
    });
    return result;
}

std::shared_ptr<QrlHosterPlugin> PluginFrame::getPlugin(const pluginAPI* pluginAPI)
{
    constexpr auto name = L"" ENTRY_NAME "getPlugin";
    const std::lock_guard lock(m_instanceMutex);
    if (!m_instance)
        VX_THROW_AS(BaseException, name, L"There's no plugin instance");
    if (!pluginAPI)
        VX_THROW_AS(BaseException, name, L"Invalid pluginAPI value");
    if (!isRecordOfInstance(pluginAPI))
        VX_THROW_AS(BaseException, name, L"Invalid pluginContextData value");
    return m_instance;
}

bool PluginFrame::isRecordOfInstance(const pluginAPI* pluginAPI) const
{
    return m_instance && pluginAPI && pluginAPI->pluginContextData == m_instance.get();
}

std::uint32_t PluginFrame::main(pluginAPI* pluginAPI) noexcept
{
    ENTRY_SCOPE("qrlPluginMain");
    VX_LOG_VALUES(pluginAPI);
    std::uint32_t result = failed;
    guarded([&] {
        const auto plugin = getPlugin(pluginAPI);
        const ScopeExit stopped([this, plugin, pluginAPI] { reportPluginStopped(*plugin, *pluginAPI); });
        plugin->reportPluginStarted();
        result = plugin->main(m_factory, m_stopRequested) ? done : noFactory;
    });
    return result;
}

void PluginFrame::reportPluginStopped(QrlHosterPlugin& plugin, pluginAPI& pluginAPI) noexcept
{
    guarded([&] {
        plugin.reportPluginStopped();
        const std::lock_guard lock(m_instanceMutex);
        pluginAPI.pluginContextData = nullptr;
        m_instance.reset();
    });
    guarded([&] { plugin.release(); });
}

std::uint32_t PluginFrame::stop(pluginAPI* pluginAPI) noexcept
{
    ENTRY_SCOPE("qrlPluginStop");
    VX_LOG_VALUES(pluginAPI);
    // Before the look-up, so that a stop ahead of main still keeps the plug-in from running.
    requestStop(pluginAPI);
    return guarded([&] { getPlugin(pluginAPI)->stop(); }) ? done : failed;
}

void PluginFrame::requestStop(const pluginAPI* pluginAPI) noexcept
{
    const std::lock_guard lock(m_instanceMutex);
    // What comes late for an instance that is gone must not stop the next one.
    const bool isLate = m_isModuleKept() && m_instance && !isRecordOfInstance(pluginAPI);
    if (!isLate)
        m_stopRequested = true;
}

void PluginFrame::onPowerEvent(pluginAPI* pluginAPI, std::uint32_t type, std::uint32_t data) noexcept
{
    ENTRY_SCOPE("qrlPluginOnPowerEvent");
    VX_LOG_VALUES(pluginAPI, type, data);
    guarded([&] { getPlugin(pluginAPI)->onPowerEvent(type, data); });
}

void PluginFrame::onSessionChangeEvent(pluginAPI* pluginAPI, std::uint32_t type, std::uint32_t data) noexcept
{
    ENTRY_SCOPE("qrlPluginOnSessionChangeEvent");
    VX_LOG_VALUES(pluginAPI, type, data);
    guarded([&] { getPlugin(pluginAPI)->onSessionChangeEvent(type, data); });
}

void PluginFrame::onResumeFromLowPowerMode(pluginAPI* pluginAPI) noexcept
{
    ENTRY_SCOPE("qrlOnResumeFromLowPowerMode");
    VX_LOG_VALUES(pluginAPI);
    // Old and new hosts look alike to the plug-in.
    onPowerEvent(pluginAPI, resumeAutomatic, 0);
}

} // namespace vx::qrl
