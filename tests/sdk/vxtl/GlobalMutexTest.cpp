#include "vxtl/globalmutex.h"
#include "support/childtest.h"
#include "support/logcapture.h"
#include "support/thrown.h"
#include "vxtl/str.h"
#include "vxtl/win32exception.h"

#include <future>
#include <sddl.h>

using namespace vx;
using namespace vx::sync;
using support::ChildTest;
using support::thrown;

namespace {

struct Signal : IWaitable {
    void* getHandle() const override { return event.get(); }
    const KernelHandle event{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
};

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
    const auto stop = std::make_shared<Signal>();
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
    support::LogCapture log;
    {
        const auto first = createAccessibleMutex(name, false);
        EXPECT_TRUE(log.has(4, "CreateMutex faile. LastError = 0, hanlde = 0x")) << log.text();
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

int main(int argc, char** argv)
{
    return support::mainWithChildren(argc, argv, {{"tryToLock", &tryToLock}, {"dieOwningIt", &dieOwningIt}});
}
