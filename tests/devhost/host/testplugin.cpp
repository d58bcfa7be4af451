// A plug-in that runs until it is stopped and then gives a result of its own.
#include "host/pluginapi.h"

#include <string>
#include <windows.h>

namespace {

using namespace devhost::host;

std::string name;
HosterApi* hoster = nullptr;
HANDLE stopEvent = nullptr;

std::uint32_t DEVHOST_CALLBACK pluginMain(PluginApi*)
{
    hoster->reportPluginState(name.c_str(), 1);
    WaitForSingleObject(stopEvent, INFINITE);
    hoster->reportPluginState(name.c_str(), 0);
    return 7;
}

std::uint32_t DEVHOST_CALLBACK pluginStop(PluginApi*)
{
    SetEvent(stopEvent);
    return 0;
}

void DEVHOST_CALLBACK onEvent(PluginApi*, std::uint32_t, std::uint32_t) {}

} // namespace

extern "C" std::uint32_t DEVHOST_CALLBACK QRLPluginInitialize(const char* pluginName, HosterApi* host, PluginApi* api)
{
    name = pluginName;
    hoster = host;
    stopEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    api->pluginMain = pluginMain;
    api->pluginStop = pluginStop;
    if (api->size >= 36)
        api->onPowerEvent = api->onSessionChangeEvent = onEvent;
    return 0;
}
