// A plug-in that writes down how it is called. The name it is given chooses how it behaves: "refuse" does
// not initialise, "overrun" writes behind its record, "deaf" does not end when it is stopped. One kind of session
// event has it ask for a reboot.
#include "host/pluginapi.h"

#include <mutex>
#include <string>
#include <windows.h>

namespace {

using namespace devhost::host;

constexpr std::uint32_t rebootWanted = 99;

std::mutex mutex;
std::string calls; // guarded by mutex
std::string name;
HosterApi* hoster = nullptr;
HANDLE stopEvent = nullptr;

void note(const std::string& call)
{
    const std::lock_guard lock(mutex);
    calls += call + ";";
}

std::uint32_t DEVHOST_CALLBACK pluginMain(PluginApi*)
{
    note("main");
    hoster->reportPluginState(name.c_str(), 1);
    WaitForSingleObject(stopEvent, INFINITE);
    hoster->reportPluginState(name.c_str(), 0);
    return 7;
}

std::uint32_t DEVHOST_CALLBACK pluginStop(PluginApi*)
{
    note("stop");
    if (name != "deaf")
        SetEvent(stopEvent);
    return 0;
}

void DEVHOST_CALLBACK onResume(PluginApi*)
{
    note("resume");
}

void DEVHOST_CALLBACK onPowerEvent(PluginApi*, std::uint32_t type, std::uint32_t data)
{
    note("power " + std::to_string(type) + " " + std::to_string(data));
}

void DEVHOST_CALLBACK onSessionChangeEvent(PluginApi*, std::uint32_t type, std::uint32_t data)
{
    note("session " + std::to_string(type) + " " + std::to_string(data));
    if (type == rebootWanted)
        ExitWindowsEx(EWX_REBOOT, data);
}

} // namespace

extern "C" std::uint32_t DEVHOST_CALLBACK QRLPluginInitialize(const char* pluginName, HosterApi* host, PluginApi* api)
{
    name = pluginName;
    hoster = host;
    stopEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    note("initialize " + std::to_string(api->size));
    api->pluginMain = pluginMain;
    api->pluginStop = pluginStop;
    if (api->size == 0 || api->size == 24)
        api->onResumeFromLowPowerMode = onResume;
    if (api->size >= 32)
        api->onPowerEvent = onPowerEvent;
    if (api->size >= 36 || name == "overrun")
        api->onSessionChangeEvent = onSessionChangeEvent;
    return name == "refuse" ? 1 : 0;
}

extern "C" const char* testPluginCalls()
{
    static std::string copy;
    const std::lock_guard lock(mutex);
    copy = calls;
    return copy.c_str();
}
