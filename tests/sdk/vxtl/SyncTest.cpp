#include "vxtl/sync.h"
#include "support/logcapture.h"
#include "support/thrown.h"
#include "vxtl/handle.h"
#include "vxtl/win32exception.h"

#include <windows.h>

#include <thread>

using namespace vx;
using testing::HasSubstr;

namespace {

struct Waitable : IWaitable {
    explicit Waitable(HANDLE owned) : handle(owned) {}
    void* getHandle() const override { return handle.get(); }
    KernelHandle handle;
};

std::shared_ptr<Waitable> makeEvent(bool set)
{
    return std::make_shared<Waitable>(CreateEventW(nullptr, TRUE, set, nullptr));
}

std::shared_ptr<Waitable> makeAbandonedMutex()
{
    auto mutex = std::make_shared<Waitable>(CreateMutexW(nullptr, FALSE, nullptr));
    std::thread([&] { WaitForSingleObject(mutex->getHandle(), INFINITE); }).join();
    return mutex;
}

} // namespace

TEST(Sync, waitsGiveTheFirstThatFired)
{
    const auto clear = makeEvent(false), set = makeEvent(true);
    const std::pair<std::vector<std::shared_ptr<Waitable>>, std::ptrdiff_t> rows[] = {
        {{}, 0}, {{clear, set}, 1}, {{set, makeEvent(true)}, 0}, {{clear, clear, makeAbandonedMutex()}, 2}};
    for (const auto& [list, expected] : rows)
        EXPECT_EQ(sync::waitForMultipleObjects(list) - list.begin(), expected) << "of " << list.size();
    EXPECT_TRUE(sync::waitForSingleObject(*makeAbandonedMutex(), 0));
    EXPECT_FALSE(sync::waitForSingleObject(*clear, 0));
}

TEST(Sync, waitsFailWithTheSystemsCode)
{
    const auto invalid = std::make_shared<Waitable>(nullptr);
    const auto failure = support::thrown<Win32Exception>([&] { sync::waitForSingleObject(*invalid, 0); });
    EXPECT_EQ(failure.code(), static_cast<unsigned long>(ERROR_INVALID_HANDLE));
    EXPECT_THAT(failure.what(),
        HasSubstr("Type: Win32Exception, Reason: wait failed, Function: vx::sync::details::waitForSingleObject,"));
    EXPECT_THROW(sync::waitForMultipleObjects(std::vector(2, invalid)), Win32Exception);
}

TEST(AutomaticHandle, closesWhatIsAHandleAndLogsItsFailure)
{
    support::LogCapture log;
    for (HANDLE noHandle : {HANDLE(nullptr), INVALID_HANDLE_VALUE})
        KernelHandle{noHandle};
    EXPECT_EQ(log.text(), "");
    KernelHandle{reinterpret_cast<void*>(0xABCD0)};
    EXPECT_TRUE(log.has(2, "Failed to close winapi handle 0xABCD0 Error: 6")) << log.text();
}

TEST(Win32Exception, takesTheSystemsTextOnlyWithoutAReason)
{
    const auto text = Win32Exception(ERROR_FILE_NOT_FOUND, L"", L"f", L"file", 1).reason();
    EXPECT_TRUE(text.size() > 2 && text.ends_with(L"\r\n"));
    EXPECT_STREQ(Win32Exception(0x2FFF1234, L"", L"f", L"file", 1).what(),
        "Type: Win32Exception, Reason: , Function: f, File: file, Line: 1, Error Code : 805245492");
}
