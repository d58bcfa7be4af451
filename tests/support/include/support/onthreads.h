#pragma once

#include <thread>
#include <vector>

namespace support {

/// Runs `work` on so many threads at once, each with its number from 0; returns when all have ended.
template <typename Work>
void onThreads(int count, Work work)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i)
        threads.emplace_back([&work, i] { work(i); });
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace support
