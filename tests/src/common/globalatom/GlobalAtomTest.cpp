#include "common/globalatom.h"
#include "support/childtest.h"
#include "support/logcapture.h"

#include <gtest/gtest.h>

namespace vx::tarn::common {
namespace {

using support::ChildTest;

int makeAtom()
{
    return GlobalAtom(ChildTest::argument()).create() ? 0 : 1;
}

TEST(GlobalAtom, isMadeOnceAndOutlivesItsMaker)
{
    const std::wstring name = support::uniqueName(L"Global\\GlobalAtomTest");
    GlobalAtom atom(name);
    EXPECT_FALSE(atom.exists());
    ASSERT_EQ(ChildTest(L"makeAtom", name).wait(), 0u);
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

int main(int argc, char** argv)
{
    return support::mainWithChildren(argc, argv, {{"makeAtom", &vx::tarn::common::makeAtom}});
}
