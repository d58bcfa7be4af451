#include "qrl-probe/memory.h"

#include <algorithm>
#include <windows.h>

namespace tools::qrlprobe::memory {

namespace {

DWORD protectionsFor(Access access)
{
    constexpr DWORD writable = PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    switch (access) {
    case Access::Write: return writable;
    case Access::Read: return writable | PAGE_READONLY | PAGE_EXECUTE_READ;
    case Access::Execute: break;
    }
    return PAGE_EXECUTE | PAGE_EXECUTE_READ | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
}

} // namespace

std::size_t extent(const void* address, std::size_t limit, Access access) noexcept
{
    const auto* const begin = static_cast<const char*>(address);
    const auto* at = begin;
    const auto done = [&] { return static_cast<std::size_t>(at - begin); };
    MEMORY_BASIC_INFORMATION region{};
    while (done() < limit && VirtualQuery(at, &region, sizeof region) == sizeof region) {
        // Touching a guard page would take the guard from a stack.
        if (region.State != MEM_COMMIT || region.Protect & PAGE_GUARD || !(region.Protect & protectionsFor(access)))
            break;
        at = static_cast<const char*>(region.BaseAddress) + region.RegionSize;
    }
    return std::min(done(), limit);
}

} // namespace tools::qrlprobe::memory
