#include "vxtl/globalmutex.h"
#include "support/childtest.h"
#include "support/logcapture.h"
#include "support/thrown.h"
#include "vxtl/win32exception.h"

#include <mutex>

using namespace vx;
using namespace vx::sync;
using support::ChildTest;
using support::thrown;

namespace {

struct GlobalMutexTest : testing::Test {
    const std::wstring name = support::uniqueName(L"Global\\GlobalMutexTest");

    std::wstring refusal() const
    {
        return thrown<Win32Exception>([this] { createAccessibleMutex(name, false); }).reason();
    }
    bool exists() const { return KernelHandle(OpenMutexW(SYNCHRONIZE, FALSE, name.c_str())).isValid(); }
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
    {
        const std::lock_guard lock(mutex);
        EXPECT_EQ(ChildTest(L"tryToLock", name).wait(), 1u);
    }
    EXPECT_EQ(ChildTest(L"tryToLock", name).wait(), 0u);
    ASSERT_EQ(ChildTest(L"dieOwningIt", name).wait(), 7u);
    EXPECT_TRUE(mutex.tryLock(0));
    mutex.unlock();
}

TEST_F(GlobalMutexTest, isMadeOnlyOnceWithoutOpenExisting)
{
    {
        const auto first = createAccessibleMutex(name, false);
        EXPECT_NE(refusal(), L"");
        EXPECT_NO_THROW(GlobalMutex(name, true));
    }
    EXPECT_FALSE(exists());
    {
        const KernelHandle plain(CreateMutexW(nullptr, FALSE, name.c_str()));
        EXPECT_EQ(refusal(), L"CreateMutex succeeded but mutex already exists and openExisting is false");
    }
    EXPECT_FALSE(exists()) << "the refused creation keeps its handle";
}

TEST_F(GlobalMutexTest, failsOnANameThatIsNoMutex)
{
    const KernelHandle event(CreateEventW(nullptr, FALSE, FALSE, name.c_str()));
    EXPECT_EQ(refusal(), L"CreateMutex failed and openExisting is false");
    EXPECT_EQ(thrown<Win32Exception>([this] { GlobalMutex mutex(name); }).reason(), L"OpenMutex failed");
}

TEST_F(GlobalMutexTest, deniesEveryoneTheChangeOfRightsFirst)
{
    BOOL present = FALSE, defaulted = FALSE;
    PACL acl = nullptr;
    ASSERT_TRUE(GetSecurityDescriptorDacl(accessibleSecurityDescriptor(), &present, &acl, &defaulted));
    ASSERT_TRUE(present && acl);
    ASSERT_EQ(acl->AceCount, 2);
    const std::pair<BYTE, ACCESS_MASK> expected[] = {
        {ACCESS_DENIED_ACE_TYPE, 0xC0000}, {ACCESS_ALLOWED_ACE_TYPE, GENERIC_ALL}};
    for (DWORD i = 0; i < 2; ++i) {
        void* entry = nullptr;
        ASSERT_TRUE(GetAce(acl, i, &entry));
        auto* ace = static_cast<ACCESS_ALLOWED_ACE*>(entry);
        EXPECT_EQ(std::pair(ace->Header.AceType, ace->Mask), expected[i]);
        EXPECT_TRUE(IsWellKnownSid(&ace->SidStart, WinWorldSid));
    }
    EXPECT_EQ(accessibleSecurityDescriptor(), accessibleSecurityDescriptor());
}

TEST_F(GlobalMutexTest, logsWhatTheSystemGave)
{
    support::LogCapture log;
    const GlobalMutex mutex(name);
    EXPECT_TRUE(log.has(4, "CreateMutex faile. LastError = 0, hanlde = 0x")) << log.text();
    EXPECT_TRUE(log.has(5, "{ vx::sync::GlobalMutex::GlobalMutex")) << log.text();
}

int main(int argc, char** argv)
{
    return support::mainWithChildren(argc, argv, {{"tryToLock", &tryToLock}, {"dieOwningIt", &dieOwningIt}});
}
