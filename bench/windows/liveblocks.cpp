#include "liveblocks.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<long> blocks{0};

} // namespace

long liveBlocks()
{
    return blocks;
}

void* operator new(std::size_t size)
{
    void* const block = std::malloc(size);
    if (!block)
        throw std::bad_alloc();
    ++blocks;
    return block;
}

void operator delete(void* block) noexcept
{
    if (block)
        --blocks;
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    operator delete(block);
}
