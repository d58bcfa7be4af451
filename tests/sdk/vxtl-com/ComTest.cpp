#include "support/thrown.h"
#include "vxtl-com/bstr.h"
#include "vxtl-com/comptr.h"
#include "vxtl/comexception.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <oleauto.h>

using namespace vx::com;

namespace {

struct Counted : IUnknown {
    int references = 1;

    HRESULT WINAPI QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG WINAPI AddRef() override { return static_cast<ULONG>(++references); }
    ULONG WINAPI Release() override { return static_cast<ULONG>(--references); }
};

} // namespace

TEST(ComPtr, holdsOneReferenceWhereverItGoes)
{
    Counted first, second;
    {
        ComPtr<Counted> a(&first), b(&second);
        ComPtr<Counted> copy = a, moved = std::move(a);
        EXPECT_EQ(first.references, 3);
        EXPECT_FALSE(a);
        copy = b;
        moved = std::move(moved);
        EXPECT_EQ(first.references, 2);
        *b.put() = nullptr;
        EXPECT_EQ(second.references, 2);
    }
    EXPECT_EQ(first.references, 1);
    EXPECT_EQ(second.references, 1);
}

TEST(ComPtr, throwsWhereACallGaveNoObject)
{
    const ComPtr<Counted> none;
    EXPECT_EQ(support::thrown<vx::ComException>([&] { none->AddRef(); }).result(), E_POINTER);
}

TEST(Bstr, keepsTextsWithNulsAndCountsNoneAsEmpty)
{
    const std::wstring text(L"a\0b", 3);
    EXPECT_EQ(Bstr(text).text(), text);
    EXPECT_EQ(SysStringLen(Bstr(L"").get()), 0u);
    Bstr given(L"old");
    *given.put() = SysAllocString(L"new");
    EXPECT_EQ(given.text(), L"new");
    EXPECT_EQ(Bstr().text(), L"");
    EXPECT_EQ(
        support::thrown<vx::ComException>([] { Bstr(std::wstring_view(L"", 0x7FFFFFF0)); }).result(), E_OUTOFMEMORY);
}
