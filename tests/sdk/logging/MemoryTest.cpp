#include "logfolder.h"
#include "logging-backend/processlogger.h"
#include "logging/logstream.h"

#include <atomic>
#include <cstdlib>
#include <new>
#include <thread>
#include <windows.h>

using testing::ElementsAre;
using vx::logging::Level;
using vx::logging::LogScope;
using vx::logging::LogStream;

namespace {

std::atomic<DWORD> watchedThread{0};
std::atomic<bool> memoryIsShort{false};
std::atomic<int> blocks{0}; ///< that the watched thread has taken and not given back

bool isWatched()
{
    return watchedThread == GetCurrentThreadId();
}

void writeAroundAScope()
{
    watchedThread = GetCurrentThreadId();
    SetLastError(1234);
    LogStream(Level::Info) << "before";
    {
        const LogScope scope("place");
        LogStream(Level::Info) << "inside";
    }
    LogStream(Level::Info) << "after";
    EXPECT_EQ(GetLastError(), 1234u);
    watchedThread = 0;
}

} // namespace

void* operator new(std::size_t size)
{
    if (isWatched() && memoryIsShort)
        throw std::bad_alloc();
    void* block = std::malloc(size);
    if (!block)
        throw std::bad_alloc();
    if (isWatched())
        ++blocks;
    return block;
}

void operator delete(void* block) noexcept
{
    if (block && isWatched())
        --blocks;
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    operator delete(block);
}

TEST(LogMemory, writesEachLineWithoutAnyAndKeepsNothingForAThread)
{
    const LogFolder folder;
    EXPECT_FALSE(VxQrlLogging::isEnabled(1));
    VxQrlLogging::open("prog", "part", 5, 0);
    for (const bool isShort : {false, true}) {
        memoryIsShort = isShort;
        std::thread(writeAroundAScope).join();
        EXPECT_EQ(blocks, 0);
    }
    memoryIsShort = false;
    VxQrlLogging::close();
    EXPECT_FALSE(VxQrlLogging::isEnabled(1));
    // Without memory a scope goes without its indentation.
    EXPECT_THAT(folder.messages(), ElementsAre("before", "{ place", "  inside", "} place", "after", "before", "{ place",
                                       "inside", "} place", "after"));
}
