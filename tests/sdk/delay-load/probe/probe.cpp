// A library for the tests to find; tells how it was asked to load its own.

#include "delay-load/librarysearch.h"

extern "C" {

__declspec(dllexport) std::uint32_t askedByComponent = 0;

__declspec(dllexport) void VX_CDECL VXDelayLoadDependencies(const vx::delayload::DependencyContext* context)
{
    askedByComponent = context->component;
}
}
