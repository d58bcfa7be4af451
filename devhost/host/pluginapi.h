#pragma once

#include <cstddef>
#include <cstdint>

/// How the host calls a plug-in and how it is called back.
#define DEVHOST_CALLBACK __stdcall

namespace devhost::host {

struct PluginApi;

/// The host's side of the bridge; only the second field is the plug-in's to use.
struct HosterApi {
    std::uint32_t own;
    void(DEVHOST_CALLBACK* reportPluginState)(const char* name, std::uint32_t state);
};

/// The plug-in's side: the host makes it and sets `size`, the plug-in fills in what that size has room
/// for. 0 stands for the oldest layout of 24 bytes.
struct PluginApi {
    using Initialize = std::uint32_t(DEVHOST_CALLBACK*)(const char* name, HosterApi* hoster, PluginApi* plugin);
    using Call = std::uint32_t(DEVHOST_CALLBACK*)(PluginApi* plugin);
    using Event = void(DEVHOST_CALLBACK*)(PluginApi* plugin, std::uint32_t type, std::uint32_t data);
    using Resume = void(DEVHOST_CALLBACK*)(PluginApi* plugin);

    std::uint32_t size;
    Initialize pluginInitialize;
    Call pluginMain;
    Call pluginStop;
    void* pluginContextData;
    Resume onResumeFromLowPowerMode;
    void* reservedCallback;
    Event onPowerEvent;
    Event onSessionChangeEvent;
};

static_assert(sizeof(HosterApi) == 8 && offsetof(HosterApi, reportPluginState) == 4);
static_assert(sizeof(PluginApi) == 36);
static_assert(offsetof(PluginApi, pluginInitialize) == 4 && offsetof(PluginApi, pluginMain) == 8);
static_assert(offsetof(PluginApi, pluginStop) == 12 && offsetof(PluginApi, pluginContextData) == 16);
static_assert(offsetof(PluginApi, onResumeFromLowPowerMode) == 20 && offsetof(PluginApi, reservedCallback) == 24);
static_assert(offsetof(PluginApi, onPowerEvent) == 28 && offsetof(PluginApi, onSessionChangeEvent) == 32);

} // namespace devhost::host
