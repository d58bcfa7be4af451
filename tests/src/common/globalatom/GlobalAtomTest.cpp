#include "common/globalatom.h"
#include "support/childtest.h"
#include "support/logcapture.h"

#include <gtest/gtest.h>

namespace vx::tarn::common {
namespace {

using support::ChildTest;

TEST(GlobalAtomChild, DISABLED_makesIt)
{
    EXPECT_TRUE(GlobalAtom(ChildTest::argument()).create());
}

TEST(GlobalAtom, isMadeOnceAndOutlivesItsMaker)
{
    const std::wstring name = support::uniqueName(L"Global\\GlobalAtomTest");
    GlobalAtom atom(name);
    EXPECT_FALSE(atom.exists());
    ASSERT_EQ(ChildTest(L"GlobalAtomChild.DISABLED_makesIt", name).wait(), 0u);
    EXPECT_TRUE(atom.exists());
    EXPECT_FALSE(atom.create());
    GlobalDeleteAtom(GlobalFindAtomW(name.c_str()));
    EXPECT_TRUE(atom.create());
    EXPECT_FALSE(GlobalAtom(name).create());
    GlobalDeleteAtom(GlobalFindAtomW(name.c_str()));
}

TEST(GlobalAtom, logsANameThatTheSystemRefuses)
{
    support::LogCapture log;
    EXPECT_FALSE(GlobalAtom(std::wstring(300, L'x')).create());
    EXPECT_TRUE(log.has(2, "Failed to add global atom xxx")) << log.text();
    EXPECT_TRUE(log.has(2, "x. Last error code: ")) << log.text();
}

} // namespace
} // namespace vx::tarn::common
