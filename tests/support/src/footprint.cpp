#include "support/footprint.h"

#include <algorithm>
#include <span>
#include <vector>
#include <windows.h>
#include <winternl.h>

namespace support {

namespace {

template <typename Allocate, typename Free>
std::ptrdiff_t freeSlots(Allocate allocate, Free free)
{
    std::vector<DWORD> slots;
    for (DWORD slot = allocate(); slot != TLS_OUT_OF_INDEXES; slot = allocate())
        slots.push_back(slot);
    for (const DWORD slot : slots)
        free(slot);
    return static_cast<std::ptrdiff_t>(slots.size());
}

std::ptrdiff_t heapBytes()
{
    HANDLE heaps[256];
    std::ptrdiff_t sum = 0;
    for (const HANDLE heap : std::span(heaps, std::min<DWORD>(GetProcessHeaps(256, heaps), 256))) {
        PROCESS_HEAP_ENTRY entry{};
        HeapLock(heap);
        while (HeapWalk(heap, &entry))
            sum += entry.wFlags & PROCESS_HEAP_ENTRY_BUSY ? static_cast<std::ptrdiff_t>(entry.cbData) : 0;
        HeapUnlock(heap);
    }
    return sum;
}

} // namespace

// In the system's own list: GetProcessHandleCount isn't everywhere more than a stub.
std::ptrdiff_t openHandles(unsigned long process)
{
    struct Entry {
        ULONG owner, others[3];
    };
    constexpr auto systemHandleInformation = static_cast<SYSTEM_INFORMATION_CLASS>(16);
    std::vector<ULONG> list(1 << 18);
    ULONG size = 0;
    if (NtQuerySystemInformation(systemHandleInformation, list.data(), list.size() * sizeof(ULONG), &size) != 0)
        return -1;
    const std::span handles(reinterpret_cast<const Entry*>(list.data() + 1), list[0]);
    return std::ranges::count(handles, process, &Entry::owner);
}

Footprint footprint()
{
    const auto threads = freeSlots(TlsAlloc, TlsFree);
    const auto fibers = freeSlots([] { return FlsAlloc(nullptr); }, FlsFree);
    return {openHandles(GetCurrentProcessId()), -threads - fibers, heapBytes()};
}

} // namespace support
