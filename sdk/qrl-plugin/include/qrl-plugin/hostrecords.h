#pragma once

#include "delay-load/callingconvention.h"

#include <cstddef>
#include <cstdint>

/// The records that the plug-in and its host share: the host's memory, an external format of 32-bit words. Hosts
/// include this, so it asks for no more than C++17.
namespace vx::qrl {

struct hosterAPI;
struct pluginAPI;

using PluginInitializeFunction = std::uint32_t(VX_STDCALL*)(const char* pluginName, hosterAPI*, pluginAPI*);
using PluginFunction = std::uint32_t(VX_STDCALL*)(pluginAPI*);
using PluginEventFunction = void(VX_STDCALL*)(pluginAPI*, std::uint32_t type, std::uint32_t data);
using PluginResumeFunction = void(VX_STDCALL*)(pluginAPI*);
using ReportPluginStateFunction = void(VX_STDCALL*)(const char* pluginName, std::uint32_t state);

/// Belongs to the host. What lies behind these fields is the host's own.
struct hosterAPI {
    std::uint32_t hostData; ///< never read
    ReportPluginStateFunction reportPluginState;
};

/// Allocated by the host, which sets `size`; the plug-in fills in the rest. The host's record may be shorter:
/// `size` says which fields exist, and 0 and 24 mean the oldest layout, which ends before reservedCallback.
struct pluginAPI {
    std::uint32_t size;
    PluginInitializeFunction pluginInitialize;
    PluginFunction pluginMain;
    PluginFunction pluginStop;
    void* pluginContextData;                       ///< null again when the plug-in has stopped
    PluginResumeFunction onResumeFromLowPowerMode; ///< for the oldest layout only
    void* reservedCallback;                        ///< from size 32 on; always null
    PluginEventFunction onPowerEvent;              ///< from size 32 on
    PluginEventFunction onSessionChangeEvent;      ///< from size 36 on
};

#ifdef _WIN32
static_assert(sizeof(void*) == 4);
static_assert(sizeof(hosterAPI) == 8 && offsetof(hosterAPI, reportPluginState) == 4);
static_assert(sizeof(pluginAPI) == 36);
static_assert(offsetof(pluginAPI, pluginInitialize) == 4);
static_assert(offsetof(pluginAPI, pluginMain) == 8);
static_assert(offsetof(pluginAPI, pluginStop) == 12);
static_assert(offsetof(pluginAPI, pluginContextData) == 16);
static_assert(offsetof(pluginAPI, onResumeFromLowPowerMode) == 20);
static_assert(offsetof(pluginAPI, reservedCallback) == 24);
static_assert(offsetof(pluginAPI, onPowerEvent) == 28);
static_assert(offsetof(pluginAPI, onSessionChangeEvent) == 32);
#endif

} // namespace vx::qrl

/// The library's one export. 0: the instance was made; 1: there is one already, or making it failed.
extern "C" std::uint32_t VX_STDCALL QRLPluginInitialize(
    const char* pluginName, vx::qrl::hosterAPI* hosterAPI, vx::qrl::pluginAPI* pluginAPI);
