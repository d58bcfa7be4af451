#include "support/footprint.h"
#include "support/onthreads.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>
#include <windows.h>

namespace {

/// The library, loaded for the object's life.
class Library {
public:
    Library() { EXPECT_NE(m_module, nullptr); }
    ~Library()
    {
        EXPECT_TRUE(FreeLibrary(m_module));
        EXPECT_EQ(GetModuleHandleW(name), nullptr);
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    bool throwNested(int value) const { return function<bool(int)>("throwNested")(value); }
    void makeOnce(void (*make)()) const { function<void(void (*)())>("makeOnce")(make); }

private:
    static constexpr auto name = L"thread-layer-testlibrary.dll";

    template <typename Function>
    Function* function(const char* exported) const
    {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(m_module, exported)));
    }

    const HMODULE m_module = LoadLibraryW(name);
};

void throwOnThreads(int threads)
{
    const Library library;
    std::atomic<int> failures = 0;
    support::onThreads(threads, [&](int thread) {
        for (int i = 0; i < 100; ++i)
            failures += !library.throwNested(thread * 1000 + i + 1);
    });
    EXPECT_EQ(failures, 0);
    EXPECT_TRUE(library.throwNested(1));
}

TEST(ThreadLayer, keepsTheExceptionsOfThreadsApartAndLeavesNothingBehind)
{
    constexpr int cycles = 20;
    throwOnThreads(4);
    const support::Footprint before = support::footprint();
    // The heap keeps some 300 bytes for each thread that the test itself has begun.
    for (int i = 0; i < cycles; ++i)
        throwOnThreads(2);
    const support::Footprint left = support::footprint() - before;
    EXPECT_LT(left.handles, cycles / 2);
    EXPECT_EQ(left.threadSlots, 0);
    EXPECT_LT(left.heapBytes, cycles * 1024);
}

TEST(ThreadLayer, worksInAProcessWithoutSlotsForFibers)
{
    std::vector<DWORD> taken;
    for (DWORD slot = FlsAlloc(nullptr); slot != FLS_OUT_OF_INDEXES; slot = FlsAlloc(nullptr))
        taken.push_back(slot);
    throwOnThreads(4);
    for (const DWORD slot : taken)
        FlsFree(slot);
}

TEST(ThreadLayer, makesAStaticObjectOnceWhileOthersWaitForIt)
{
    static std::atomic<int> made;
    const Library library;
    std::atomic<int> early = 0;
    support::onThreads(8, [&](int) {
        library.makeOnce([] {
            SwitchToThread();
            ++made;
        });
        early += made != 1;
    });
    EXPECT_EQ(made, 1);
    EXPECT_EQ(early, 0);
}

// What the layer keeps of a thread is destroyed by code of the library.
TEST(ThreadLayer, isDoneWithAThreadThatOutlivesTheLibrary)
{
    auto library = std::make_unique<Library>();
    std::promise<void> thrown, unloaded;
    std::thread outliving([&] {
        library->throwNested(1);
        thrown.set_value();
        unloaded.get_future().wait();
    });
    thrown.get_future().wait();
    library.reset();
    unloaded.set_value();
    outliving.join();
}

} // namespace
