#pragma once

#include <cstddef>

namespace support {

/// What a process can run out of.
struct Footprint {
    std::ptrdiff_t handles;
    std::ptrdiff_t threadSlots; ///< of both kinds, for threads and for fibers
    std::ptrdiff_t heapBytes;   ///< of all heaps

    friend Footprint operator-(const Footprint& a, const Footprint& b)
    {
        return {a.handles - b.handles, a.threadSlots - b.threadSlots, a.heapBytes - b.heapBytes};
    }
};

/// Of this process, now. No other thread should take or give back anything meanwhile.
Footprint footprint();

/// How many handles a process has open; negative when the system does not tell.
std::ptrdiff_t openHandles(unsigned long process);

} // namespace support
