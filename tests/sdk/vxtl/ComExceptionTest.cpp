#include "vxtl/comexception.h"
#include "support/thrown.h"
#include "vxtl/comutils.h"

#include <windows.h>

#include <oaidl.h>
#include <oleauto.h>

#include <thread>

using namespace vx;
using testing::EndsWith;

namespace {

/// The system's error object.
std::shared_ptr<IErrorInfo> errorInfo()
{
    ICreateErrorInfo* maker = nullptr;
    EXPECT_EQ(CreateErrorInfo(&maker), S_OK);
    IErrorInfo* info = nullptr;
    maker->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&info));
    maker->SetSource(std::wstring(L"the source").data());
    maker->Release();
    return {info, [](IErrorInfo* last) { last->Release(); }};
}

std::wstring reportOf(const ComError& error)
{
    return ComException(error, L"reason", L"function", L"file", 7).wideWhat();
}

} // namespace

TEST(ComException, reportsMessageResultAndSourceAndGivesTheErrorObjectBack)
{
    const auto info = errorInfo();
    EXPECT_EQ(reportOf({static_cast<long>(0x8004FFFF), info.get()}),
        L"Type: vx::ComException, Reason: reason, Function: function, File: file, Line: 7, COM Error: IDispatch error "
        L"#65023, HRESULT: -2147155969, COM Source: the source");
    EXPECT_THAT(reportOf(E_ACCESSDENIED), EndsWith(L"COM Error: Access denied., HRESULT: -2147024891, COM Source: "));
    {
        const ComException first({E_FAIL, info.get()}, L"reason", L"function", L"file", 7);
        ComException copy(first);
        EXPECT_EQ((info->AddRef(), info->Release()), 3u);
        copy = ComException(S_OK, L"another", L"function", L"file", 7);
    }
    EXPECT_EQ((info->AddRef(), info->Release()), 1u);
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
        CoUninitialize();
    }).join();
}
