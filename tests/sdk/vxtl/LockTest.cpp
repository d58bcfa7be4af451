#include "vxtl/lock.h"

#include <gtest/gtest.h>

#include <functional>
#include <shared_mutex>
#include <thread>
#include <type_traits>
#include <vector>

namespace vx::sync {
namespace {

using namespace std::chrono_literals;

constinit Mutex mutex;
constinit SharedMutex sharedMutex;
constinit RecursiveMutex recursiveMutex;
static_assert(std::is_trivially_destructible_v<Mutex> && std::is_trivially_destructible_v<SharedMutex> &&
              std::is_trivially_destructible_v<RecursiveMutex> && std::is_trivially_destructible_v<ConditionVariable>);

TEST(Lock, letsOneThreadInAtATime)
{
    const struct {
        const char* name;
        std::function<void(int&)> increment;
    } locks[] = {{"mutex",
                     [](int& value) {
                         const std::lock_guard lock(mutex);
                         ++value;
                     }},
        {"tried mutex",
            [](int& value) {
                while (!mutex.try_lock())
                    std::this_thread::yield();
                const std::lock_guard lock(mutex, std::adopt_lock);
                ++value;
            }},
        {"shared mutex",
            [](int& value) {
                const std::lock_guard lock(sharedMutex);
                ++value;
            }},
        {"recursive mutex", [](int& value) {
             const std::lock_guard outer(recursiveMutex);
             {
                 const std::lock_guard inner(recursiveMutex);
             }
             ++value;
         }}};
    for (const auto& [name, increment] : locks) {
        SCOPED_TRACE(name);
        int value = 0;
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&] {
                for (int round = 0; round < 10'000; ++round)
                    increment(value);
            });
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(value, 40'000);
    }
}

TEST(Lock, letsReadersInTogetherAndTheWriterBehindThem)
{
    int value = 0;
    std::thread writer;
    {
        const std::shared_lock lock(sharedMutex);
        std::thread([&] {
            const std::shared_lock other(sharedMutex);
            EXPECT_EQ(value, 0);
        }).join();
        writer = std::thread([&] {
            const std::lock_guard own(sharedMutex);
            ++value;
        });
        EXPECT_EQ(value, 0);
    }
    writer.join();
    EXPECT_EQ(value, 1);
}

TEST(Lock, knowsTheOwnerOfARecursiveMutex)
{
    const auto isOwnedByOther = [] {
        bool isOwned = true;
        std::thread([&] { isOwned = recursiveMutex.isOwnedByCaller(); }).join();
        return isOwned;
    };
    std::unique_lock outer(recursiveMutex);
    std::unique_lock inner(recursiveMutex);
    EXPECT_FALSE(isOwnedByOther());
    inner.unlock();
    EXPECT_TRUE(recursiveMutex.isOwnedByCaller());
    outer.unlock();
    EXPECT_FALSE(recursiveMutex.isOwnedByCaller());
}

class ConditionVariableTest : public testing::Test {
protected:
    /// Another thread gets in only while this one waits, so a time-out means that it had not been told.
    bool isToldWithin(std::chrono::milliseconds timeout)
    {
        std::unique_lock lock(mutex);
        std::thread teller([&] {
            const std::lock_guard own(mutex);
            isTold = true;
            changed.notify_all();
        });
        const bool wasTold = changed.waitFor(lock, timeout, [&] { return isTold; });
        lock.unlock();
        teller.join();
        return wasTold;
    }

    Mutex mutex;
    ConditionVariable changed;
    bool isTold = false; ///< guarded by mutex
};

TEST_F(ConditionVariableTest, waitsWithAndWithoutAnEnd)
{
    constexpr std::chrono::milliseconds timeouts[] = {
        60s, 24h * 24, 24h * 25, std::chrono::milliseconds(1LL << 32), std::chrono::milliseconds::max()};
    for (const auto timeout : timeouts) {
        isTold = false;
        EXPECT_TRUE(isToldWithin(timeout)) << timeout.count();
    }
    std::thread teller([&] {
        const std::lock_guard lock(mutex);
        isTold = false;
        changed.notify_one();
    });
    std::unique_lock lock(mutex);
    changed.wait(lock, [&] { return !isTold; });
    teller.join();
}

TEST_F(ConditionVariableTest, endsAtOnceWhenNothingIsLeftAndLaterWhenSomethingWas)
{
    std::unique_lock lock(mutex);
    for (const auto nothing : {0ms, -1ms, std::chrono::milliseconds::min()})
        EXPECT_FALSE(changed.waitFor(lock, nothing)) << nothing.count();
    EXPECT_FALSE(changed.waitFor(lock, 1ms, [] { return false; }));
    EXPECT_TRUE(changed.waitFor(lock, 0ms, [] { return true; }));
    EXPECT_TRUE(lock.owns_lock());
    EXPECT_FALSE(mutex.try_lock());
}

} // namespace
} // namespace vx::sync
