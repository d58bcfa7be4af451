// Compiled without the others' realigning of the stack at the head of a function, which hides how it came in.
#include "qrl-probe/entries.h"

namespace tools::qrlprobe {

constinit Probe* loadedProbe = nullptr;

namespace {

using vx::qrl::pluginAPI;

// Inlined, so that the frame is the entry's: the saved frame pointer, the return address, then what the caller pushed.
[[gnu::always_inline]] inline std::uintptr_t callersStack() noexcept
{
    return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)) + 2 * sizeof(void*);
}

std::uint32_t VX_STDCALL probeMain(pluginAPI* record)
{
    return loadedProbe->main(callersStack(), record);
}

std::uint32_t VX_STDCALL probeStop(pluginAPI* record)
{
    return loadedProbe->stop(callersStack(), record);
}

void VX_STDCALL probeOnPowerEvent(pluginAPI* record, std::uint32_t, std::uint32_t)
{
    loadedProbe->event(Call::PowerEvent, callersStack(), record);
}

void VX_STDCALL probeOnSessionChangeEvent(pluginAPI* record, std::uint32_t, std::uint32_t)
{
    loadedProbe->event(Call::SessionEvent, callersStack(), record);
}

void VX_STDCALL probeOnResume(pluginAPI* record)
{
    loadedProbe->event(Call::Resume, callersStack(), record);
}

} // namespace

Callbacks entries() noexcept
{
    return {.initialize = QRLPluginInitialize,
        .main = probeMain,
        .stop = probeStop,
        .onPowerEvent = probeOnPowerEvent,
        .onSessionChangeEvent = probeOnSessionChangeEvent,
        .onResumeFromLowPowerMode = probeOnResume};
}

} // namespace tools::qrlprobe

std::uint32_t VX_STDCALL QRLPluginInitialize(
    const char* pluginName, vx::qrl::hosterAPI* hosterAPI, vx::qrl::pluginAPI* pluginAPI)
{
    using namespace tools::qrlprobe;
    return loadedProbe->initialize(callersStack(), pluginName, hosterAPI, pluginAPI);
}
