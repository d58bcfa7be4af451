#include "common/globalatom/globalatom.h"
#include "support/childtest.h"
#include "support/logcapture.h"

using vx::tarn::common::GlobalAtom;

TEST(GlobalAtom, isMadeOnce)
{
    const std::wstring name = support::uniqueName(L"Global\\GlobalAtomTest");
    GlobalAtom atom(name);
    EXPECT_FALSE(atom.exists());
    EXPECT_TRUE(atom.create());
    EXPECT_TRUE(GlobalAtom(name).exists());
    EXPECT_FALSE(GlobalAtom(name).create());
    GlobalDeleteAtom(GlobalFindAtomW(name.c_str()));
    EXPECT_FALSE(atom.exists()) << "it was made twice";
}

TEST(GlobalAtom, logsANameThatTheSystemRefuses)
{
    support::LogCapture log;
    EXPECT_FALSE(GlobalAtom(std::wstring(300, L'x')).create());
    EXPECT_TRUE(log.has(2, "Failed to add global atom " + std::string(300, 'x') + ". Last error code: ")) << log.text();
}
