#include "vxtl/sync.h"
#include "support/childtest.h"
#include "support/logcapture.h"
#include "support/thrown.h"
#include "vxtl/globalmutex.h"
#include "vxtl/str.h"
#include "vxtl/win32exception.h"

#include <future>
#include <sddl.h>

using namespace vx;
using namespace vx::sync;
using support::ChildTest;
using support::thrown;

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

struct GlobalMutexTest : testing::Test {
    const std::wstring name = support::uniqueName(L"Global\\GlobalMutexTest");

    std::wstring refusal() const
    {
        return thrown<Win32Exception>([this] { createAccessibleMutex(name, false); }).reason();
    }
};

int tryToLock()
{
    return GlobalMutex(ChildTest::argument()).tryLock(0) ? 0 : 1;
}

int dieOwningIt()
{
    GlobalMutex mutex(ChildTest::argument());
    mutex.lock();
    TerminateProcess(GetCurrentProcess(), 7);
    return 8;
}

} // namespace

TEST_F(GlobalMutexTest, excludesOtherProcessesAndIsTakenOverFromDeadOnes)
{
    GlobalMutex mutex(name);
    mutex.lock();
    EXPECT_EQ(ChildTest(L"tryToLock", name).wait(), 1u);
    mutex.unlock();
    EXPECT_EQ(ChildTest(L"tryToLock", name).wait(), 0u);
    ASSERT_EQ(ChildTest(L"dieOwningIt", name).wait(), 7u);
    EXPECT_EQ(mutex.lock(), PreviousOwner::Died);
    EXPECT_EQ(mutex.lock(), PreviousOwner::Released) << "it is this thread's own by now";
    mutex.unlock();
    mutex.unlock();
}

TEST_F(GlobalMutexTest, aStopEndsTheWaitAndLeavesAFreeMutexToItsTaker)
{
    const auto stop = makeEvent(false);
    GlobalMutex mutex(name, true, stop);
    mutex.lock();
    // The first waits when the stop comes, the second one begins after it.
    for (int i = 0; i < 2; ++i) {
        auto refused = std::async(std::launch::async, [&] { return thrown<StoppedException>([&] { mutex.lock(); }); });
        SetEvent(stop->getHandle());
        EXPECT_EQ(std::string(refused.get().what()), "Stopped while waiting for the mutex " + str::toUtf8(name));
    }
    mutex.unlock();
    ASSERT_EQ(ChildTest(L"dieOwningIt", name).wait(), 7u);
    for (const PreviousOwner expected : {PreviousOwner::Died, PreviousOwner::Released}) {
        EXPECT_EQ(mutex.lock(), expected);
        mutex.unlock();
    }
}

TEST_F(GlobalMutexTest, refusesWhatExistsAndWhatIsNoMutex)
{
    {
        const auto first = createAccessibleMutex(name, false);
        EXPECT_NE(refusal(), L"");
        EXPECT_NO_THROW(GlobalMutex(name, true));
    }
    {
        const KernelHandle plain(CreateMutexW(nullptr, FALSE, name.c_str()));
        EXPECT_EQ(refusal(), L"CreateMutex succeeded but mutex already exists and openExisting is false");
    }
    // Which works, as neither the first mutex nor the refused creation keeps the name.
    const KernelHandle noMutex(CreateEventW(nullptr, FALSE, FALSE, name.c_str()));
    EXPECT_EQ(refusal(), L"CreateMutex failed and openExisting is false");
    EXPECT_EQ(thrown<Win32Exception>([this] { GlobalMutex mutex(name); }).reason(), L"OpenMutex failed");
}

TEST_F(GlobalMutexTest, deniesEveryoneTheChangeOfRightsFirst)
{
    wchar_t* text = nullptr;
    ASSERT_TRUE(ConvertSecurityDescriptorToStringSecurityDescriptorW(
        accessibleSecurityDescriptor(), SDDL_REVISION_1, DACL_SECURITY_INFORMATION, &text, nullptr));
    EXPECT_STREQ(text, L"D:(D;;WDWO;;;WD)(A;;GA;;;WD)");
    LocalFree(text);
}

TEST(Sync, waitsGiveTheFirstThatFired)
{
    const auto clear = makeEvent(false), set = makeEvent(true);
    const std::pair<std::vector<std::shared_ptr<Waitable>>, std::ptrdiff_t> rows[] = {
        {{}, 0}, {{clear, set}, 1}, {{set, makeEvent(true)}, 0}, {{clear, clear, makeAbandonedMutex()}, 2}};
    for (const auto& [list, expected] : rows)
        EXPECT_EQ(waitForMultipleObjects(list) - list.begin(), expected) << "of " << list.size();
    EXPECT_TRUE(waitForSingleObject(*makeAbandonedMutex(), 0));
    EXPECT_FALSE(waitForSingleObject(*clear, 0));
}

TEST(Sync, waitsFailWithTheSystemsCode)
{
    const auto invalid = std::make_shared<Waitable>(nullptr);
    const auto failure = thrown<Win32Exception>([&] { waitForSingleObject(*invalid, 0); });
    EXPECT_EQ(failure.code(), static_cast<unsigned long>(ERROR_INVALID_HANDLE));
    EXPECT_THROW(waitForMultipleObjects(std::vector(2, invalid)), Win32Exception);
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

int main(int argc, char** argv)
{
    return support::mainWithChildren(argc, argv, {{"tryToLock", &tryToLock}, {"dieOwningIt", &dieOwningIt}});
}
