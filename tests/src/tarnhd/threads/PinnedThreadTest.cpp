#include "tarnhd/pinnedthread.h"
#include "support/logcapture.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace vx::tarn {
namespace {

constexpr DWORD deadline = 60'000;
constexpr auto libraryName = L"pinnedthread-testlibrary.dll";

TEST(PinnedThread, firesWhenTheBodyAndWhatItHoldsAreGone)
{
    support::LogCapture log;
    const auto held = std::make_shared<int>(1);
    const PinnedThread thread([copy = held] { throw std::runtime_error("broken body"); });
    ASSERT_TRUE(sync::waitForSingleObject(thread, deadline));
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_TRUE(log.has(2, "Exception caught: broken body")) << log.text();
}

TEST(PinnedThread, keepsAnUnloadedLibraryUntilItHasEnded)
{
    const KernelHandle go(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const HMODULE library = LoadLibraryW(libraryName);
    ASSERT_NE(library, nullptr) << GetLastError();
    using Start = HANDLE(HANDLE);
    auto* const start = reinterpret_cast<Start*>(reinterpret_cast<void*>(GetProcAddress(library, "startLateThread")));
    ASSERT_NE(start, nullptr);
    const KernelHandle thread(start(go.get()));
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
