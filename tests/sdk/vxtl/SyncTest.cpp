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

TEST(Sync, singleWaitTellsFiringFromTimeout)
{
    EXPECT_TRUE(sync::waitForSingleObject(*makeEvent(true), 0));
    EXPECT_FALSE(sync::waitForSingleObject(*makeEvent(false), 0));
    EXPECT_TRUE(sync::waitForSingleObject(*makeAbandonedMutex(), 0));
}

TEST(Sync, multipleWaitGivesTheFirstThatFired)
{
    const auto clear = makeEvent(false);
    const auto set = makeEvent(true);
    struct {
        const char* trace;
        std::vector<std::shared_ptr<Waitable>> list;
        std::ptrdiff_t expected;
    } const rows[] = {
        {"empty", {}, 0},
        {"one", {set}, 0},
        {"the second", {clear, set}, 1},
        {"both", {set, makeEvent(true)}, 0},
        {"abandoned alone", {makeAbandonedMutex()}, 0},
        {"abandoned behind", {clear, clear, makeAbandonedMutex()}, 2},
    };
    for (const auto& row : rows)
        EXPECT_EQ(sync::waitForMultipleObjects(row.list) - row.list.begin(), row.expected) << row.trace;
}

TEST(Sync, failedWaitNamesItsFunction)
{
    const Waitable nothing(nullptr);
    const std::vector<const IWaitable*> list = {&nothing, &nothing};
    const auto single = support::thrown<Win32Exception>([&] { sync::waitForSingleObject(nothing, 0); });
    const auto multiple = support::thrown<Win32Exception>([&] { sync::waitForMultipleObjects(list); });
    const std::string report = "Type: Win32Exception, Reason: wait failed, Function: vx::sync::details::";
    EXPECT_THAT(single.what(), HasSubstr(report + "waitForSingleObject,"));
    EXPECT_THAT(multiple.what(), HasSubstr(report + "waitForMultipleObjects,"));
    for (const auto& failure : {single, multiple})
        EXPECT_EQ(failure.code(), static_cast<unsigned long>(ERROR_INVALID_HANDLE));
}

TEST(AutomaticHandle, closesWhatIsAHandleAndLogsItsFailure)
{
    support::LogCapture log;
    HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    {
        const KernelHandle owner(event), null(nullptr), invalid(INVALID_HANDLE_VALUE);
    }
    EXPECT_EQ(log.text(), "");
    DWORD flags;
    EXPECT_FALSE(GetHandleInformation(event, &flags));
    {
        const KernelHandle stale(reinterpret_cast<void*>(0xABCD0));
    }
    EXPECT_TRUE(log.has(2, "Failed to close winapi handle 0xABCD0 Error: 6")) << log.text();
}

TEST(Win32Exception, takesTheSystemsTextOnlyWithoutAReason)
{
    const Win32Exception known(ERROR_FILE_NOT_FOUND, L"", L"f", L"file", 1);
    EXPECT_TRUE(known.reason().size() > 2 && known.reason().ends_with(L"\r\n"));
    const Win32Exception nullReason(ERROR_FILE_NOT_FOUND, static_cast<const wchar_t*>(nullptr), L"f", L"file", 1);
    EXPECT_EQ(nullReason.reason(), known.reason());
    EXPECT_STREQ(Win32Exception(0x2FFF1234, L"", L"f", L"file", 1).what(),
        "Type: Win32Exception, Reason: , Function: f, File: file, Line: 1, Error Code : 805245492");
}
