// A library for the tests to find and bind; tells what was called in it.

#include "delay-load/librarysearch.h"

namespace {
std::uint32_t initialized = 0;
std::uint32_t askedByComponent = 0;
} // namespace

extern "C" {

__declspec(dllexport) void VX_CDECL VXDelayLoadDependencies(const vx::delayload::DependencyContext* context)
{
    askedByComponent = context->component;
}

__declspec(dllexport) void VX_CDECL Probe_Initialize()
{
    ++initialized;
}

__declspec(dllexport) std::uint32_t VX_CDECL Probe_Initialized()
{
    return initialized;
}

__declspec(dllexport) std::uint32_t VX_CDECL Probe_AskedByComponent()
{
    return askedByComponent;
}
}
