#include "vxtl/lock.h"
#include "support/onthreads.h"

#include <gtest/gtest.h>

#include <shared_mutex>
#include <type_traits>

using namespace std::chrono_literals;
using namespace vx::sync;

namespace {

constinit Mutex mutex;
constinit SharedMutex sharedMutex;
constinit RecursiveMutex recursiveMutex;
static_assert(std::is_trivially_destructible_v<Mutex> && std::is_trivially_destructible_v<SharedMutex> &&
              std::is_trivially_destructible_v<RecursiveMutex> && std::is_trivially_destructible_v<ConditionVariable>);

template <typename Lock>
void expectOneThreadAtATime(const char* trace, Lock& lock)
{
    int value = 0;
    support::onThreads(4, [&](int) {
        for (int round = 0; round < 10'000; ++round) {
            const std::lock_guard own(lock);
            ++value;
        }
    });
    EXPECT_EQ(value, 40'000) << trace;
}

} // namespace

TEST(Lock, letsOneThreadInAtATimeAndReadersTogether)
{
    expectOneThreadAtATime("mutex", mutex);
    expectOneThreadAtATime("shared mutex", sharedMutex);
    expectOneThreadAtATime("recursive mutex", recursiveMutex);
    const std::shared_lock reader(sharedMutex);
    std::thread([] { const std::shared_lock other(sharedMutex); }).join();
}

TEST(Lock, knowsTheOwnerOfARecursiveMutex)
{
    std::unique_lock outer(recursiveMutex);
    std::unique_lock inner(recursiveMutex);
    std::thread([] { EXPECT_FALSE(recursiveMutex.isOwnedByCaller()); }).join();
    inner.unlock();
    EXPECT_TRUE(recursiveMutex.isOwnedByCaller());
    outer.unlock();
    EXPECT_FALSE(recursiveMutex.isOwnedByCaller());
}

TEST(ConditionVariable, isToldOfInWaitsOfAnyLength)
{
    for (const auto end : {60'000ms, std::chrono::milliseconds(1LL << 32), std::chrono::milliseconds::max()}) {
        ConditionVariable changed;
        bool isTold = false;
        std::unique_lock lock(mutex);
        // It gets in only while this one waits, so a time-out means that it had not been told.
        std::thread teller([&] {
            const std::lock_guard own(mutex);
            isTold = true;
            changed.notify_one();
        });
        EXPECT_TRUE(changed.waitFor(lock, end, [&] { return isTold; })) << end.count();
        lock.unlock();
        teller.join();
    }
}

TEST(ConditionVariable, endsAtOnceWhenNothingIsLeftAndLaterWhenSomethingWas)
{
    ConditionVariable changed;
    std::unique_lock lock(mutex);
    for (const auto nothing : {0ms, -1ms, std::chrono::milliseconds::min()})
        EXPECT_FALSE(changed.waitFor(lock, nothing)) << nothing.count();
    EXPECT_FALSE(changed.waitFor(lock, 1ms, [] { return false; }));
    EXPECT_TRUE(changed.waitFor(lock, 0ms, [] { return true; }));
    EXPECT_FALSE(mutex.try_lock()) << "it is this thread's again";
}
