#include "vxtl/globalmutex.h"
#include "support/childtest.h"
#include "support/logcapture.h"
#include "vxtl/win32exception.h"

#include <gtest/gtest.h>

#include <mutex>

namespace vx::sync {
namespace {

using support::ChildTest;

class GlobalMutexTest : public testing::Test {
protected:
    const std::wstring m_name = support::uniqueName(L"Global\\GlobalMutexTest");
};

std::wstring refusal(const std::wstring& name)
{
    try {
        createAccessibleMutex(name, false);
    } catch (const Win32Exception& e) {
        return e.reason();
    }
    return {};
}

bool exists(const std::wstring& name)
{
    return KernelHandle(OpenMutexW(SYNCHRONIZE, FALSE, name.c_str())).isValid();
}

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

TEST_F(GlobalMutexTest, excludesOtherProcesses)
{
    GlobalMutex mutex(m_name);
    {
        const std::lock_guard lock(mutex);
        EXPECT_EQ(ChildTest(L"tryToLock", m_name).wait(), 1u);
    }
    EXPECT_EQ(ChildTest(L"tryToLock", m_name).wait(), 0u);
}

TEST_F(GlobalMutexTest, isTakenOverFromADeadProcess)
{
    GlobalMutex mutex(m_name);
    ASSERT_EQ(ChildTest(L"dieOwningIt", m_name).wait(), 7u);
    EXPECT_TRUE(mutex.tryLock(0));
    mutex.unlock();
}

TEST_F(GlobalMutexTest, isMadeOnlyOnceWithoutOpenExisting)
{
    {
        const auto first = createAccessibleMutex(m_name, false);
        EXPECT_NE(refusal(m_name), L"");
        EXPECT_NO_THROW(GlobalMutex(m_name, true));
    }
    EXPECT_FALSE(exists(m_name));
    {
        const KernelHandle plain(CreateMutexW(nullptr, FALSE, m_name.c_str()));
        EXPECT_EQ(refusal(m_name), L"CreateMutex succeeded but mutex already exists and openExisting is false");
    }
    EXPECT_FALSE(exists(m_name)) << "the refused creation keeps its handle";
}

TEST_F(GlobalMutexTest, failsOnANameThatIsNoMutex)
{
    const KernelHandle event(CreateEventW(nullptr, FALSE, FALSE, m_name.c_str()));
    EXPECT_EQ(refusal(m_name), L"CreateMutex failed and openExisting is false");
    try {
        GlobalMutex mutex(m_name);
        ADD_FAILURE();
    } catch (const Win32Exception& e) {
        EXPECT_EQ(e.reason(), L"OpenMutex failed");
    }
}

TEST_F(GlobalMutexTest, deniesEveryoneTheChangeOfRightsFirst)
{
    BOOL present = FALSE, defaulted = FALSE;
    PACL acl = nullptr;
    ASSERT_TRUE(GetSecurityDescriptorDacl(accessibleSecurityDescriptor(), &present, &acl, &defaulted));
    ASSERT_TRUE(present && acl);
    ASSERT_EQ(acl->AceCount, 2);
    struct {
        BYTE type;
        ACCESS_MASK mask;
    } const expected[] = {{ACCESS_DENIED_ACE_TYPE, 0xC0000}, {ACCESS_ALLOWED_ACE_TYPE, GENERIC_ALL}};
    for (DWORD i = 0; i < 2; ++i) {
        void* entry = nullptr;
        ASSERT_TRUE(GetAce(acl, i, &entry));
        auto* ace = static_cast<ACCESS_ALLOWED_ACE*>(entry);
        EXPECT_EQ(ace->Header.AceType, expected[i].type);
        EXPECT_EQ(ace->Mask, expected[i].mask);
        EXPECT_TRUE(IsWellKnownSid(&ace->SidStart, WinWorldSid));
    }
    EXPECT_EQ(accessibleSecurityDescriptor(), accessibleSecurityDescriptor());
}

TEST_F(GlobalMutexTest, logsWhatTheSystemGave)
{
    support::LogCapture log;
    const GlobalMutex mutex(m_name);
    EXPECT_TRUE(log.has(4, "CreateMutex faile. LastError = 0, hanlde = 0x")) << log.text();
    EXPECT_TRUE(log.has(5, "{ vx::sync::GlobalMutex::GlobalMutex")) << log.text();
}

} // namespace
} // namespace vx::sync

int main(int argc, char** argv)
{
    return support::mainWithChildren(
        argc, argv, {{"tryToLock", &vx::sync::tryToLock}, {"dieOwningIt", &vx::sync::dieOwningIt}});
}
