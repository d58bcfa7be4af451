#include "vxtl/comexception.h"
#include "support/thrown.h"
#include "vxtl/comutils.h"

#include <windows.h>

#include <oaidl.h>
#include <oleauto.h>

#include <thread>

// COM objects delete themselves; their destructor is nobody's to call.
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

using namespace vx;
using testing::EndsWith;
using testing::HasSubstr;

namespace {

/// Counts its references and names a source.
struct FakeErrorInfo : IErrorInfo {
    HRESULT sourceResult = S_OK;
    const wchar_t* source = L"the source";
    int references = 1;

    HRESULT WINAPI QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG WINAPI AddRef() override { return static_cast<ULONG>(++references); }
    ULONG WINAPI Release() override { return static_cast<ULONG>(--references); }
    HRESULT WINAPI GetGUID(GUID*) override { return E_NOTIMPL; }
    HRESULT WINAPI GetSource(BSTR* text) override
    {
        *text = source ? SysAllocString(source) : nullptr;
        return sourceResult;
    }
    HRESULT WINAPI GetDescription(BSTR*) override { return E_NOTIMPL; }
    HRESULT WINAPI GetHelpFile(BSTR*) override { return E_NOTIMPL; }
    HRESULT WINAPI GetHelpContext(DWORD*) override { return E_NOTIMPL; }
};

std::wstring reportOf(const ComError& error)
{
    return ComException(error, L"reason", L"function", L"file", 7).wideWhat();
}

} // namespace

TEST(ComException, reportsMessageResultAndSource)
{
    FakeErrorInfo info;
    EXPECT_EQ(reportOf({static_cast<long>(0x8004FFFF), &info}),
        L"Type: vx::ComException, Reason: reason, Function: function, File: file, Line: 7, COM Error: IDispatch error "
        L"#65023, HRESULT: -2147155969, COM Source: the source");
    EXPECT_THAT(reportOf(E_ACCESSDENIED), HasSubstr(L", COM Error: Access denied.,"));
    EXPECT_THAT(reportOf(E_ACCESSDENIED), EndsWith(L", HRESULT: -2147024891, COM Source: "));
    info.source = nullptr;
    EXPECT_THAT(reportOf({E_FAIL, &info}), EndsWith(L", COM Source: "));
    info.sourceResult = E_FAIL;
    EXPECT_THAT(reportOf({E_FAIL, &info}), EndsWith(L", COM Source: "));
}

TEST(ComException, sharesTheErrorObjectWithItsCopies)
{
    FakeErrorInfo info;
    {
        const ComException first({E_FAIL, &info}, L"reason", L"function", L"file", 7);
        EXPECT_EQ(info.references, 2);
        ComException second(first);
        EXPECT_EQ(info.references, 3);
        second = ComException(S_OK, L"another", L"function", L"file", 7);
        EXPECT_EQ(info.references, 2);
        EXPECT_EQ(second.reason(), L"another");
    }
    EXPECT_EQ(info.references, 1);
}

TEST(ComApartment, entersTheMultithreadedApartmentOnce)
{
    std::thread([] {
        const comutils::ComApartment apartment;
        APTTYPE type;
        APTTYPEQUALIFIER qualifier;
        ASSERT_EQ(CoGetApartmentType(&type, &qualifier), S_OK);
        EXPECT_EQ(type, APTTYPE_MTA);
    }).join();
    std::thread([] {
        ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
        const auto failure = support::thrown<ComException>([] { comutils::ComApartment(); });
        EXPECT_EQ(failure.result(), RPC_E_CHANGED_MODE);
        EXPECT_THAT(failure.what(), HasSubstr("Reason: CoInitializeEx failed, Function: "
                                              "vx::comutils::details::initializeCom,"));
        CoUninitialize();
    }).join();
}
