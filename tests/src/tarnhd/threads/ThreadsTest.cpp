#include "support/gate.h"
#include "support/logcapture.h"
#include "tarnhd/threads/joinedthread.h"
#include "tarnhd/threads/pinnedthread.h"
#include "vxtl/modulelife.h"

#include <windows.h>

namespace vx::tarn {
namespace {

constexpr DWORD deadline = 60'000;
constexpr auto libraryName = L"pinnedthread-testlibrary.dll";

template <typename Function>
Function* functionOf(HMODULE library, const char* name)
{
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

TEST(JoinedThread, isGoneBehindItsOwner)
{
    support::LogCapture log;
    support::Gate gate;
    bool ended = false;
    {
        const JoinedThread thread([&] {
            gate.pass();
            ended = true;
            throw std::runtime_error("broken body");
        });
        EXPECT_FALSE(ended);
        gate.open();
    }
    EXPECT_TRUE(ended);
    EXPECT_TRUE(log.has(2, "broken body")) << log.text();
}

TEST(PinnedThread, firesWhenTheBodyAndWhatItHoldsAreGoneAndKeepsNothingThen)
{
    support::LogCapture log;
    const auto held = std::make_shared<int>(1);
    {
        const PinnedThread thread([copy = held] { throw std::runtime_error("broken body"); });
        ASSERT_TRUE(sync::waitForSingleObject(thread, deadline));
        EXPECT_EQ(held.use_count(), 1);
    }
    EXPECT_TRUE(log.has(2, "Exception caught: broken body")) << log.text();
    EXPECT_FALSE(modulelife::isKept());
}

TEST(PinnedThread, keepsAnUnloadedLibraryUntilItHasEnded)
{
    const KernelHandle go(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const HMODULE library = LoadLibraryW(libraryName);
    ASSERT_NE(library, nullptr) << GetLastError();
    auto* const start = functionOf<HANDLE(HANDLE)>(library, "startLateThread");
    auto* const isKept = functionOf<bool()>(library, "isKept");
    ASSERT_TRUE(start && isKept);
    EXPECT_FALSE(isKept());
    const KernelHandle thread(start(go.get()));
    EXPECT_TRUE(isKept()) << "its owner has left it behind";
    ASSERT_TRUE(FreeLibrary(library));
    EXPECT_NE(GetModuleHandleW(libraryName), nullptr);
    SetEvent(go.get());
    ASSERT_EQ(WaitForSingleObject(thread.get(), deadline), WAIT_OBJECT_0);
    DWORD code = 1;
    EXPECT_TRUE(GetExitCodeThread(thread.get(), &code));
    EXPECT_EQ(code, 0u);
    EXPECT_EQ(GetModuleHandleW(libraryName), nullptr);
}

} // namespace
} // namespace vx::tarn
