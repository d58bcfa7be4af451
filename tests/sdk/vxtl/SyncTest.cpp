#include "vxtl/sync.h"
#include "support/logcapture.h"
#include "vxtl/handle.h"
#include "vxtl/win32exception.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <thread>

namespace vx {
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
    const auto abandoned = makeAbandonedMutex();
    using List = std::vector<std::shared_ptr<Waitable>>;
    struct {
        const char* trace;
        List list;
        std::ptrdiff_t expected;
    } const rows[] = {
        {"empty", {}, 0},
        {"one", {set}, 0},
        {"the second", {clear, set}, 1},
        {"both", {set, makeEvent(true)}, 0},
        {"abandoned alone", {makeAbandonedMutex()}, 0},
        {"abandoned behind", {clear, clear, abandoned}, 2},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.trace);
        EXPECT_EQ(sync::waitForMultipleObjects(row.list) - row.list.begin(), row.expected);
    }
}

TEST(Sync, failedWaitNamesItsFunction)
{
    const Waitable nothing(nullptr);
    const auto check = [](auto wait, const std::string& function) {
        try {
            wait();
            ADD_FAILURE();
        } catch (const Win32Exception& e) {
            EXPECT_EQ(e.code(), static_cast<unsigned long>(ERROR_INVALID_HANDLE));
            EXPECT_NE(std::string(e.what()).find("Type: Win32Exception, Reason: wait failed, Function: "
                                                 "vx::sync::details::" +
                                                 function + ","),
                std::string::npos)
                << e.what();
        }
    };
    check([&] { sync::waitForSingleObject(nothing, 0); }, "waitForSingleObject");
    const std::vector<const IWaitable*> list = {&nothing, &nothing};
    check([&] { sync::waitForMultipleObjects(list); }, "waitForMultipleObjects");
}

TEST(AutomaticHandle, closesWhatIsAHandleAndLogsItsFailure)
{
    support::LogCapture log;
    HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    {
        const KernelHandle owner(event);
    }
    {
        const KernelHandle null(nullptr), invalid(INVALID_HANDLE_VALUE);
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

} // namespace
} // namespace vx
