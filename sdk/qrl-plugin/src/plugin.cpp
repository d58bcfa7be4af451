#include "pluginframe.h"

#include "logging/nodestructor.h"

namespace vx::qrl {

namespace {

PluginFrame& processFrame();

std::uint32_t VX_STDCALL qrlPluginMain(pluginAPI* pluginAPI)
{
    return processFrame().main(pluginAPI);
}

std::uint32_t VX_STDCALL qrlPluginStop(pluginAPI* pluginAPI)
{
    return processFrame().stop(pluginAPI);
}

void VX_STDCALL qrlPluginOnPowerEvent(pluginAPI* pluginAPI, std::uint32_t type, std::uint32_t data)
{
    processFrame().onPowerEvent(pluginAPI, type, data);
}

void VX_STDCALL qrlPluginOnSessionChangeEvent(pluginAPI* pluginAPI, std::uint32_t type, std::uint32_t data)
{
    processFrame().onSessionChangeEvent(pluginAPI, type, data);
}

void VX_STDCALL qrlOnResumeFromLowPowerMode(pluginAPI* pluginAPI)
{
    processFrame().onResumeFromLowPowerMode(pluginAPI);
}

// Not destroyed: when a host ends without stopping the plug-in, the library's detach finds the plug-in's threads
// already killed, and taking the plug-in apart would wait for them under the loader lock.
PluginFrame& processFrame()
{
    static NoDestructor<PluginFrame> frame(Callbacks{
        .initialize = QRLPluginInitialize,
        .main = qrlPluginMain,
        .stop = qrlPluginStop,
        .onPowerEvent = qrlPluginOnPowerEvent,
        .onSessionChangeEvent = qrlPluginOnSessionChangeEvent,
        .onResumeFromLowPowerMode = qrlOnResumeFromLowPowerMode,
    });
    return *frame;
}

} // namespace

void registerPluginFactory(PluginFactory factory)
{
    processFrame().registerPluginFactory(std::move(factory));
}

} // namespace vx::qrl

std::uint32_t VX_STDCALL QRLPluginInitialize(
    const char* pluginName, vx::qrl::hosterAPI* hosterAPI, vx::qrl::pluginAPI* pluginAPI)
{
    return vx::qrl::processFrame().initialize(pluginName, hosterAPI, pluginAPI);
}
