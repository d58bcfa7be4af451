#include "common/globalatom/globalatom.h"
#include "support/childtest.h"

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
    EXPECT_FALSE(GlobalAtom(std::wstring(300, L'x')).create()) << "no name of the system's";
}
